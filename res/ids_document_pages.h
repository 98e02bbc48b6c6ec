/* Control ids of the document sheet's pages (templates 1003-1006 in
   dialogs/document_pages.rc). Plain defines: included by the resource script and the code. */
#ifndef KX20_IDS_DOCUMENT_PAGES_H
#define KX20_IDS_DOCUMENT_PAGES_H

/* Templates and page titles. */
#define IDD_DEVICE_SETTINGS 1003
#define IDD_OPTIONS 1004
#define IDD_FIRST_STATION 1005
#define IDD_SECOND_STATION 1006

/* Device settings page (1003). */
#define IDC_DS_PRINTER_GROUP 1020
#define IDC_DS_STATUS 1021
#define IDC_DS_SETUP_GROUP 1022
#define IDC_DS_STATION 1023 /* list: 0 receipt station, 1 document station */
#define IDC_DS_STATION_LABEL 1024
#define IDC_DS_PAPER_LABEL 1025
#define IDC_DS_PAPER 1026
#define IDC_DS_STATION_NOTE 1027
#define IDC_DS_MEMORY_GROUP 1028
#define IDC_DS_MEMORY_NOTE 1029

/* Options page (1004). */
#define IDC_OPT_FRAME 1050 /* moved to a strip at the right edge at start */
#define IDC_OPT_MODE_GROUP 1060
#define IDC_OPT_MODE_FIRST 1064
#define IDC_OPT_MODE_SECOND 1065
#define IDC_OPT_CHOICE_LABEL 1066
#define IDC_OPT_CHOICE 1067
#define IDC_OPT_JOB_GROUP 1068
#define IDC_OPT_CUT_PAPER 1070
#define IDC_OPT_FLAG_56 1072
#define IDC_OPT_FLAG_60 1073
#define IDC_OPT_FLAG_64 1074
#define IDC_OPT_FLAG_68 1075
#define IDC_OPT_FLOW_LABEL 1076
#define IDC_OPT_FLOW 1077
#define IDC_OPT_DENSITY_LABEL 1078
#define IDC_OPT_DENSITY 1079
#define IDC_OPT_FONT_LABEL 1080
#define IDC_OPT_FONT 1081
#define IDC_OPT_SUMMARY 1090 /* inside frame 1050: the device settings the page follows */

/* Station pages (1005, 1006). */
#define IDC_ST_LOGO_GROUP 1100
#define IDC_ST_HEADER_LOGO_LABEL 1101
#define IDC_ST_HEADER_LOGO 1102
#define IDC_ST_HEADER_PREVIEW 1103
#define IDC_ST_FOOTER_LOGO_LABEL 1104
#define IDC_ST_FOOTER_LOGO 1105
#define IDC_ST_FOOTER_PREVIEW 1106
#define IDC_ST_MESSAGE_GROUP 1107
#define IDC_ST_TOP_MESSAGE_LABEL 1108
#define IDC_ST_TOP_MESSAGE 1109
#define IDC_ST_TOP_TEXT 1110
#define IDC_ST_BOTTOM_MESSAGE_LABEL 1111
#define IDC_ST_BOTTOM_MESSAGE 1112
#define IDC_ST_BOTTOM_TEXT 1113
#define IDC_ST_FONT_LABEL 1114
#define IDC_ST_FONT 1115
#define IDC_ST_STATUS 1116

#endif
