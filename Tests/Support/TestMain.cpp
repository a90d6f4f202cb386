#include "Tests/Support/TestMain.hpp"

#include <QCoreApplication>

#include <cstdio>
#include <map>
#include <string>

namespace Varnholt::TestSupport {

namespace {

std::map<std::string, TestRun>& Tests()
{
    static std::map<std::string, TestRun> s_Tests;
    return s_Tests;
}

std::unique_ptr<QCoreApplication> MakePlain(int& p_Count, char** p_Arguments)
{
    return std::make_unique<QCoreApplication>(p_Count, p_Arguments);
}

ApplicationMaker& Maker()
{
    static ApplicationMaker s_Maker = MakePlain;
    return s_Maker;
}

} // namespace

bool UseApplication(ApplicationMaker p_Maker)
{
    Maker() = p_Maker;
    return true;
}

bool RegisterTest(QMetaObject const& p_Class, TestRun p_Run)
{
    std::string const name = p_Class.className();
    if (!Tests().emplace(name.substr(name.rfind(':') + 1), p_Run).second)
        qFatal("two classes of tests are named %s", name.c_str());
    return true;
}

} // namespace Varnholt::TestSupport

/// The first argument names the class to run, the others are Qt Test's; "--list" lists the classes.
int main(int p_Count, char** p_Arguments)
{
    using namespace Varnholt::TestSupport;

    std::string const name = p_Count > 1 ? p_Arguments[1] : "";
    if (auto const test = Tests().find(name); test != Tests().end()) {
        p_Arguments[1] = p_Arguments[0];
        int count = p_Count - 1;
        auto const application = Maker()(count, p_Arguments + 1);
        return test->second(count, p_Arguments + 1);
    }
    bool const isList = name == "--list";
    if (!isList)
        std::fprintf(stderr, "%s: there is no class of tests \"%s\"; choose one of these:\n",
                     p_Arguments[0], name.c_str());
    for (auto const& test : Tests())
        std::puts(test.first.c_str());
    return isList ? 0 : 2;
}
