#pragma once

#include <QTest>

/// A test program of many test classes: each file of it registers its class, and the program's first argument
/// names the one to run.
class TestProgram {
public:
    using Prepare = void (*)();
    using Run = int (*)(int argc, char** argv);

    /// \param prepare called before there is an application object: the class's initMain, where it has one.
    static bool Register(const char* name, Prepare prepare, Run run);
};

// Qt's own words at the end of a test file, which would make a program of each.
#undef QTEST_MAIN
#undef QTEST_GUILESS_MAIN
#define QTEST_MAIN(TestClass)                                                                                \
    [[maybe_unused]] static const bool registered##TestClass = TestProgram::Register(                        \
        #TestClass, &QTest::Internal::callInitMain<TestClass>, [](int argc, char** argv) {                   \
            TestClass test;                                                                                  \
            return QTest::qExec(&test, argc, argv);                                                          \
        });
#define QTEST_GUILESS_MAIN(TestClass) QTEST_MAIN(TestClass)
