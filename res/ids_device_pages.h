// Control ids of the device sheet's pages, the About box and the logo file dialog's template.
// A control whose label is a string of the resource module has the string's number.
#pragma once

// Templates (each also the number of its title string).
#define IDD_ABOUT 1000
#define IDD_LOGO_FILE 1001
#define IDD_LOGOS_PAGE 1007
#define IDD_MESSAGES_PAGE 1008
#define IDD_FONTS_PAGE 1009
#define IDD_MAINTENANCE_PAGE 1010
#define IDD_LOG_SETTINGS_PAGE 1011

// Shared by every device page.
#define IDC_PRINTER_STATUS 1213

// Logos page.
#define IDC_LOGO_LIST 1150
#define IDC_LOGO_ADD 1151
#define IDC_LOGO_PREVIEW 1152
#define IDC_LOGO_DELETE 1153

// Messages page.
#define IDC_MESSAGE_LIST 1160
#define IDC_MESSAGE_TEXT 1161
#define IDC_MESSAGE_STORE 1162
#define IDC_MESSAGE_DELETE 1163

// Fonts page.
#define IDC_SBCS_GROUP 1170
#define IDC_SBCS_SLOT1_LABEL 1171
#define IDC_SBCS_SLOT1_NAME 1172
#define IDC_SBCS_SLOT1_CAPTURE 1173
#define IDC_SBCS_SLOT2_LABEL 1174
#define IDC_SBCS_SLOT2_NAME 1175
#define IDC_SBCS_SLOT2_CAPTURE 1176
#define IDC_DBCS_ENABLE 1177
#define IDC_DBCS_THERMAL_GROUP 1178
#define IDC_DBCS_THERMAL_NAME 1179
#define IDC_DBCS_THERMAL_LOAD 1180
#define IDC_DBCS_IMPACT_GROUP 1181
#define IDC_DBCS_IMPACT_NAME 1182
#define IDC_DBCS_IMPACT_LOAD 1183

// Maintenance page.
#define IDC_ABOUT_BUTTON 1049
#define IDC_FIRMWARE_LABEL 1190
#define IDC_FIRMWARE_PATH 1191
#define IDC_FIRMWARE_BROWSE 1192
#define IDC_FIRMWARE_UPDATE 1193
#define IDC_LAST_PRINTER 1194
#define IDC_MAINTENANCE 1195
#define IDC_CLEAR_ALL 1196

// Log settings page.
#define IDC_LOG_ENABLE 1200
#define IDC_LOG_FOLDER_LABEL 1201
#define IDC_LOG_FOLDER 1202
#define IDC_LOG_BROWSE 1203
#define IDC_LOG_KINDS 1204
#define IDC_LOG_API 1205
#define IDC_LOG_PRINTING 1206
#define IDC_LOG_PORT_IO 1207
#define IDC_LOG_RESTORE 1208
#define IDC_LOG_WRAP_LABEL 1209
#define IDC_LOG_WRAP_SIZE 1210
#define IDC_LOG_WRAP_SPIN 1211
#define IDC_LOG_WRAP_UNIT 1212

// About box.
#define IDC_ABOUT_LOGO 1220
#define IDC_ABOUT_PRODUCT 1221
#define IDC_ABOUT_VERSION 1222
#define IDC_ABOUT_COPYRIGHT 1223
#define IDC_ABOUT_SUPPORT 1224

// Logo file dialog: the logo's form.
#define IDC_LOGO_FORM 1234
#define IDC_LOGO_FORM_LABEL 1235
