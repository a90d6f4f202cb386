#pragma once

namespace Varnholt::Launcher {

/// What a host may ask `Application::GetRessource` for. The numbers are part of the interface; a
/// host may ask with any number, and a module answers a null string to those it does not know.
struct ApplicationRessource {
    enum Type : int {
        BackgroundImage = 0, ///< resource path of the page's background
        BackgroundColor = 1, ///< "#RRGGBB"
        BackgroundPlacement = 2,
        Icon = 3,         ///< resource path
        IconSelected = 4, ///< resource path
        ThemeColor = 5,   ///< "red,green,blue", each 0 to 255
        PageStyle = 6,
        PageOverlay = 7,
        NewsPlaceholder = 8, ///< http address of an image
    };
};

} // namespace Varnholt::Launcher
