#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InterfaceScene.h"

#include <vector>

namespace {

using zelto::fuzz::Operation;

/// Inputs that go on for longer show nothing that shorter ones do not.
constexpr int MOST_OPERATIONS = 100;

std::vector<std::span<const Operation>> Alphabet() {
    return {zelto::fuzz::SourceOperations(), zelto::fuzz::DisplayOperations(),
            zelto::fuzz::BandOperations(), zelto::fuzz::ShapeOperations(),
            zelto::fuzz::RegionOperations()};
}

} // namespace

// A sequence of calls, in any order and with any arguments that the headers allow, on a few
// objects that refer to each other: one byte for the subject, one for the operation, then its
// arguments.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    static const std::vector<std::span<const Operation>> alphabet = Alphabet();
    zelto::fuzz::InputBytes bytes(data, size);
    zelto::fuzz::Scene scene;
    for (int i = 0; i < MOST_OPERATIONS && !bytes.IsEmpty(); ++i) {
        const auto& subject =
            alphabet[static_cast<std::size_t>(bytes.Below(static_cast<int>(alphabet.size())))];
        const int which = bytes.Below(static_cast<int>(subject.size()));
        subject[static_cast<std::size_t>(which)](scene, bytes);
    }
    return 0;
}
