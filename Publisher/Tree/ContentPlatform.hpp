#pragma once

namespace Varnholt::Publisher {

/// The system whose clients fetch a build: decides the manifest's file list and the flag that marks
/// the game's executable.
enum class ContentPlatform { Mac, Windows };

} // namespace Varnholt::Publisher
