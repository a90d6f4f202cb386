#pragma once

#include "Publisher/FileTreatment.hpp"
#include "Publisher/SourceFile.hpp"

namespace Varnholt::Publisher {

/// One file of a build.
struct BuildFile {
    SourceFile Source;
    FileTreatment Treatment;
    QString Md5; ///< 32 upper-case hexadecimal digits; empty until the file was read
};

} // namespace Varnholt::Publisher
