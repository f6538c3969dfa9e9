#pragma once

#include "zelto/vector/VectorSource.h"

#include <ogrsf_frmts.h>

#include <memory>
#include <string>
#include <vector>

class CRasterSource;
class CZonalStatistics;

namespace zelto::cli {

/// Which features of a vector file are zones, and what of them stands in the results.
struct ZoneOptions {
    std::string file;
    std::string layer;         ///< empty: the first
    std::string idField;       ///< empty: the number that the file gives a feature
    std::string includeFields; ///< names, separated by commas
};

/// A feature that is a zone.
struct Zone {
    OGRFeatureUniquePtr feature;
    std::string id;
    std::vector<std::string> fields; ///< values of the fields that are included
};

/// The features of a vector file, each a zone.
class Zones {
  public:
    /// Opens the file and reads all of its features. Throws Failure, and UsageError for a layer or
    /// a field that is not there.
    explicit Zones(const ZoneOptions& options);

    /// Adds every feature, in the raster's reference system. Throws Failure naming the feature.
    void AddTo(CZonalStatistics& statistics, const CRasterSource& raster) const;

    const std::vector<Zone>& List() const { return m_zones; }
    const std::string& IdName() const { return m_idName; }
    const std::vector<std::string>& FieldNames() const { return m_fieldNames; }
    OGRLayer& Layer() const { return *m_layer; }

  private:
    int FieldNumber(const char* option, const std::string& name) const;
    OGRLayer* FindLayer(const std::string& name) const;

    std::string m_path;
    CVectorSource m_source;
    OGRLayer* m_layer = nullptr;
    std::string m_idName = "fid";
    std::vector<std::string> m_fieldNames;
    std::vector<Zone> m_zones; ///< their features go before the file is closed
};

} // namespace zelto::cli
