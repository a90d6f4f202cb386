#pragma once

#include "Publisher/Rules/FileTreatment.hpp"
#include "Publisher/Source/SourceFile.hpp"

namespace Varnholt::Publisher {

/// One file of a build.
struct BuildFile {
    SourceFile Source;
    FileTreatment Treatment;
    QString Md5;            ///< 32 upper-case hexadecimal digits; empty until the file was read
    bool IsIndexed = false; ///< the digest is of the index: the file was not read
};

} // namespace Varnholt::Publisher
