#include "Launcher/Application/Application.hpp"

#include <QObject>

#include <cstdlib>

namespace Varnholt::TestSupport {

/// A module of a layout that this host does not know: none of its code may run.
class ForeignModule : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID Varnholt_Application_iid FILE "ForeignModule.json")
};

} // namespace Varnholt::TestSupport

namespace {

/// Run when the library is loaded, before anything else of it.
[[maybe_unused]] int const g_EndsTheProgram = [] {
    std::_Exit(EXIT_FAILURE);
    return 0;
}();

} // namespace

#include "ForeignModule.moc"
