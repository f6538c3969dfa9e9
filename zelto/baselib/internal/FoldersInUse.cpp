#include "zelto/baselib/internal/FoldersInUse.h"

#include <map>
#include <system_error>

namespace zelto {

namespace fs = std::filesystem;

namespace {

struct State {
    std::shared_mutex placing;  ///< taken before `mutex`
    std::recursive_mutex mutex; ///< of what follows
    std::map<int, fs::path> folders;
    int last = 0;
    bool abandoned = false;
};

State& TheState() {
    static State state;
    return state;
}

/// The process may work in another folder when it ends.
fs::path Absolute(const fs::path& folder) {
    std::error_code error;
    fs::path absolute = fs::absolute(folder, error);
    return error ? folder : absolute;
}

/// A file that another thread makes while the folder is emptied would keep it.
void RemoveWhileWritten(const fs::path& folder) {
    constexpr int MOST_TRIES = 100;
    std::error_code error;
    for (int tries = 0; tries < MOST_TRIES; ++tries) {
        fs::remove_all(folder, error);
        if (!error)
            return;
    }
}

} // namespace

std::unique_lock<std::recursive_mutex> FoldersInUse::Lock() {
    return std::unique_lock(TheState().mutex);
}

int FoldersInUse::Add(const fs::path& folder) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.folders.emplace(++state.last, Absolute(folder));
    return state.last;
}

void FoldersInUse::Forget(int number) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.folders.erase(number);
}

std::shared_lock<std::shared_mutex> FoldersInUse::HoldEndOff() {
    return std::shared_lock(TheState().placing);
}

bool FoldersInUse::AreAbandoned() {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return state.abandoned;
}

void FoldersInUse::Abandon() {
    State& state = TheState();
    const std::unique_lock nothingIsPlaced(state.placing);
    const std::lock_guard lock(state.mutex);
    state.abandoned = true;
    for (const auto& [number, folder] : state.folders)
        RemoveWhileWritten(folder);
}

} // namespace zelto
