#pragma once

#include "zelto/datasource/DataProgress.h"

#include "viewer/model/TrainingClasses.h"
#include "viewer/worker/Requests.h"

#include <QString>
#include <string>
#include <vector>

namespace zelto::view {

/// A class and the shapes that its samples are taken from.
struct SampleShapes {
    int number = 0;
    QString name;
    Shapes shapes;
};

struct SampleRequest {
    QString path;          ///< of the image
    std::string reference; ///< system that the shapes are in; empty: the image's own
    std::vector<SampleShapes> classes;
    QString target; ///< sample file to write; empty: none
};

struct SampleAnswer {
    std::vector<ClassSpectrum> spectra;
    QString reason; ///< why it failed; empty: it did not
};

struct SampleFileContent {
    std::vector<SampleShapes> classes;
    QString reason;
};

/// Reads the pixels under the shapes of every class and, where that is wanted, writes them as the
/// samples of a supervised classification. For the thread of long works, which tells what is
/// thrown.
SampleAnswer CollectSamples(const SampleRequest& request, CDataProgress& progress);

SampleFileContent ReadSamples(const QString& path);

} // namespace zelto::view
