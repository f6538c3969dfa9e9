#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/classify/ClassifiedAssistantFile.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputFolder.h"

#include <memory>

// An assistant file: read and shown; sometimes written, and the same bytes when written once more.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const auto& folder = zelto::fuzz::InputFolder::Get();
    folder.Write("in.acf", data, size);
    CClassifiedAssistantFile file;
    if (!file.ReadClassifiedAssistantFile(folder.WideFile("in.acf")))
        return 0;
    const std::unique_ptr<CClassifyDisplayTable> table(file.CreateClassifyDisplayTable());
    unsigned char color[4];
    if (table)
        table->GetColor(1.0, color[0], color[1], color[2], color[3]);
    if (!zelto::fuzz::IsChosen(data, size, 32))
        return 0;

    const std::wstring first = folder.WideFile("first.acf");
    const std::wstring second = folder.WideFile("second.acf");
    zelto::fuzz::Require(file.WriteClssifiedAssistantFile(first), "what was read is written");
    CClassifiedAssistantFile again;
    zelto::fuzz::Require(again.ReadClassifiedAssistantFile(first) &&
                             again.WriteClssifiedAssistantFile(second) &&
                             folder.Read("first.acf") == folder.Read("second.acf"),
                         "what was written stays the same");
    return 0;
}
