#pragma once

#include "zelto/geometry/BoundingBox.h"

#include "host/base/Failure.h"

#include <optional>
#include <string>
#include <vector>

class CAOISource;
class CRasterSource;

namespace CLI {
class App;
}

namespace zelto::cli {

/// A stretch with what it is told; empty texts were not given.
struct StretchOptions {
    std::string name = "stddev";
    std::string clip;   ///< low,high in percent
    std::string ranges; ///< low,high in sample values, for all bands or for each
    std::string gamma;  ///< one number for all bands, or one for each
    std::optional<double> low;
    std::optional<double> high;
    std::optional<double> threshold;
    std::optional<int> wallisModel;
    std::string from; ///< image, view or aoi
    bool exact = false;
};

/// What --stretch-from may name.
struct StretchPlaces {
    CBoundingBox view;
    CAOISource* area = nullptr; ///< null without --aoi
};

/// The values of an image are not such that a stretch could show them.
class UnsuitedStretch : public host::Failure {
  public:
    using host::Failure::Failure;
};

/// Adds --stretch and the options of the stretches.
void AddStretchOptions(CLI::App& command, StretchOptions& options);

/// Throws UsageError for a name that is none, and for an option that the stretch does not take.
/// @param hasArea whether --aoi is given
void CheckStretch(const StretchOptions& options, bool hasArea);

/// The same for a sheet of all stretches, where each takes the options that are for it.
void CheckStretchesOfSheet(const StretchOptions& options, bool hasArea);

/// The options that a stretch takes of those given for a sheet.
StretchOptions StretchOfSheet(const StretchOptions& options, const std::string& name);

/// Whether a stretch can be drawn with the bands that the source shows. The Wallis models start
/// from statistics of the three colours of a picture, which one of a single band does not have.
bool SuitsShownBands(CRasterSource& source, const std::string& name);

/// Names of the stretches that a sheet shows.
std::vector<std::string> StretchesOfSheet();

/// Whether 8-bit values are shown as they are, for which none has to be read before.
bool ShowsBytesAsTheyAre(const StretchOptions& options);

/// Sets the stretch on the source, with progress where it reads for long. Throws Failure naming
/// `path`, UnsuitedStretch among them, and UsageError where the options do not fit the shown bands.
void ApplyStretch(CRasterSource& source, const StretchOptions& options, const StretchPlaces& places,
                  const std::string& path);

} // namespace zelto::cli
