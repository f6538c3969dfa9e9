#include "zelto/aoi/DrawShape.h"
#include "zelto/classify/ClassifySampleFile.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

// A sample file: read and copied; sometimes written, and the same when read again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("in.samples", data, size);
    CClassifySampleFile file;
    if (file.ReadClassifySampleFile(folder.WideFile("in.samples")) == 0)
        return 0;
    CClassifySampleFile copy(file);
    bool inStep = true;
    for (int i = 0; i < copy.GetClassCount(); ++i) {
        auto& record = *copy.GetClass(i);
        record.SetName(record.GetName());
        inStep = inStep && (record.m_hasSamples == 0 ||
                            record.m_sampleShapeCount == int(record.m_sampleShapes.size()));
    }
    if (!zelto::fuzz::IsChosen(data, size, 32))
        return 0;

    const std::wstring path = folder.WideFile("out.samples");
    // A class cut within its numbers is not written. Shapes of unknown kinds are counted but not
    // kept; to lower the count before writing is the host's affair.
    if (copy.WriteClassifySampleFile(path) == 0 || !inStep)
        return 0;
    CClassifySampleFile again;
    zelto::fuzz::Require(again.ReadClassifySampleFile(path) == 1 &&
                             again.GetClassCount() == file.GetClassCount(),
                         "samples that were written are read back");
    return 0;
}
