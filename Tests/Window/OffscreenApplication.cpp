#include "Tests/Support/TestMain.hpp"

#include <QApplication>

namespace Varnholt::TestSupport {

namespace {

std::unique_ptr<QCoreApplication> MakeOffscreen(int& p_Count, char** p_Arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QApplication>(p_Count, p_Arguments);
}

[[maybe_unused]] bool const c_IsUsed = UseApplication(MakeOffscreen);

} // namespace

} // namespace Varnholt::TestSupport
