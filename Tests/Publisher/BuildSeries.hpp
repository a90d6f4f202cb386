#pragma once

#include "Publisher/Tree/BuildCatalog.hpp"
#include "Tests/Publisher/PublishedGame.hpp"

#include <chrono>
#include <filesystem>

namespace Varnholt::TestSupport {

/// A tree with the builds "build_1", "build_2", …, published an hour after each other; each has the
/// game, a file that all share and one of its own. The last one is on offer.
class BuildSeries : public PublishedGame {
public:
    explicit BuildSeries(int p_Builds)
    {
        Put("shared", "shared");
        for (int i = 1; i <= p_Builds; ++i) {
            Put("own", Own(i));
            Publish(Name(i));
            SetAge(i, p_Builds - i);
        }
    }

    static QString Name(int p_Build) { return QString("build_%1").arg(p_Build); }
    static QByteArray Own(int p_Build) { return "content of " + QByteArray::number(p_Build); }
    /// Where the content that only one build has lies in the tree.
    static QString OwnPath(int p_Build) { return ContentPath(Own(p_Build)); }
    QString Manifest(int p_Build) const
    {
        return OutputPath("pelmora_app/builds/" + Name(p_Build) + "/info.json");
    }

    void SetAge(int p_Build, int p_Hours) const
    {
        std::filesystem::last_write_time(Manifest(p_Build).toStdString(),
                                         std::filesystem::file_time_type::clock::now() -
                                             std::chrono::hours(p_Hours));
    }

    Publisher::BuildCatalog Catalog() const { return {Options.Output, Options.AppId}; }
    bool IsWhole(int p_Build) const
    {
        return Catalog().Has(Name(p_Build)) && Catalog().Read(Name(p_Build)).Missing.isEmpty();
    }
    bool HasOwn(int p_Build) const { return Read(OwnPath(p_Build)) == Own(p_Build); }
};

} // namespace Varnholt::TestSupport
