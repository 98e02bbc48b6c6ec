// kx20: the driver's conversions and payload builders on the command line, so a Linux till can
// prepare the printer's jobs and a person can look at what the driver would send.
#include <cstdio>
#include <string>
#include <vector>

#include "command_group.h"

namespace kx20tool {

namespace {

struct Group {
    const char* name;
    const char* usage;
    GroupMain run;
};

std::vector<Group>& Groups() {
    static std::vector<Group> groups;
    return groups;
}

int Usage() {
    std::fprintf(stderr, "usage: kx20 GROUP COMMAND ...\n");
    for (const Group& g : Groups())
        std::fprintf(stderr, "%s", g.usage);
    return kExitUsage;
}

}  // namespace

CommandGroup::CommandGroup(const char* name, const char* usage, GroupMain run) {
    Groups().push_back({name, usage, run});
}

}  // namespace kx20tool

int main(int argc, char** argv) {
    using namespace kx20tool;
    if (argc < 2)
        return Usage();
    std::string name = argv[1];
    for (const auto& g : Groups()) {
        if (name == g.name)
            return g.run(std::vector<std::string>(argv + 2, argv + argc));
    }
    std::fprintf(stderr, "kx20: unknown command group '%s'\n", name.c_str());
    return Usage();
}
