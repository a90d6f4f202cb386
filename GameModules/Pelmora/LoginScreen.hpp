#pragma once

#include <QString>

namespace Varnholt::Launcher {

/// The login screen files of the game, which log a player in by themselves while they exist.
class LoginScreen {
public:
    /// In the installation folder. "GlueXMl" is how the game spells its folder.
    static constexpr char const* c_Layout = "Interface/GlueXMl/AccountLogin.xml";
    static constexpr char const* c_Script = "Interface/GlueXMl/AccountLogin.lua";
    static constexpr char const* c_TemplateSuffix = ".origin";

    /// \param p_Folder installation folder, ends in "/"
    explicit LoginScreen(QString const& p_Folder);

    /// Deletes the files of an earlier start. Failures are ignored.
    void Remove() const;

    /// Builds the files from their templates; does nothing when a template is missing or a text is
    /// empty. The texts are inserted as they are, without escaping. Failures are ignored.
    void Build(QString const& p_Login, QString const& p_Password) const;

private:
    QString Layout;
    QString LayoutTemplate;
    QString Script;
    QString ScriptTemplate;
};

} // namespace Varnholt::Launcher
