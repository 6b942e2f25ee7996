#include "support/TestProgram.h"

#ifdef QT_WIDGETS_LIB
#include <QApplication>
#else
#include <QCoreApplication>
#endif

#include <cstdio>
#include <map>
#include <string>

namespace {

#ifdef QT_WIDGETS_LIB
using Application = QApplication;
#else
using Application = QCoreApplication;
#endif

struct Class {
    TestProgram::Prepare prepare;
    TestProgram::Run run;
};

std::map<std::string, Class>& Classes() {
    static std::map<std::string, Class> classes;
    return classes;
}

} // namespace

bool TestProgram::Register(const char* name, Prepare prepare, Run run) {
    return Classes().emplace(name, Class{prepare, run}).second;
}

int main(int argc, char** argv) {
    const auto found = argc < 2 ? Classes().end() : Classes().find(argv[1]);
    if (found == Classes().end()) {
        std::fputs("The first argument names a test class, the others are Qt Test's. The classes:\n", stderr);
        for (const auto& [name, unused] : Classes())
            std::fprintf(stderr, "  %s\n", name.c_str());
        return 2;
    }
    // What another installation of the program shares is no part of a test.
    qputenv("XDG_DATA_DIRS", "/nonexistent");
    argv[1] = argv[0];
    --argc;
    ++argv;
    found->second.prepare();
    const Application application(argc, argv);
#ifdef QT_WIDGETS_LIB
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
#endif
    return found->second.run(argc, argv);
}
