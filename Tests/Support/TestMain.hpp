#pragma once

#include <QtTest>

#include <memory>

namespace Varnholt::TestSupport {

/// Runs a class of tests with Qt Test's own arguments and returns the exit status.
using TestRun = int (*)(int p_Count, char** p_Arguments);

/// Makes a class of tests known to its program, which runs it when it is asked for by its name
/// without namespaces. A second one of the same name ends the program.
bool RegisterTest(QMetaObject const& p_Class, TestRun p_Run);

/// Makes what the tests of a program run under.
using ApplicationMaker = std::unique_ptr<QCoreApplication> (*)(int& p_Count, char** p_Arguments);

/// Has another one than the plain application, as a program with windows must; before `main`.
bool UseApplication(ApplicationMaker p_Maker);

/// A row of test data, with a value for each column.
template <typename... Values>
void AddRow(char const* p_Name, Values const&... p_Values)
{
    (QTest::newRow(p_Name) << ... << p_Values);
}

} // namespace Varnholt::TestSupport

/// Registers a class of tests: once in its source, outside of all namespaces.
#define VARNHOLT_TEST(p_Class)                                                                     \
    [[maybe_unused]] static bool const c_TestIsRegistered = Varnholt::TestSupport::RegisterTest(   \
        p_Class::staticMetaObject, [](int p_Count, char** p_Arguments) {                           \
            p_Class test;                                                                          \
            return QTest::qExec(&test, p_Count, p_Arguments);                                      \
        });
