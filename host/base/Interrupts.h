#pragma once

#include <stdexcept>

namespace zelto::host {

/// The user asked to stop: Ctrl-C, a termination request, or the terminal went away. The program
/// says so in one line and exits with EXIT_INTERRUPTED. Besides EndIfInterrupted(), what opens
/// files, prints results or puts a new file in its place throws it.
class Interruption : public std::runtime_error {
  public:
    Interruption() : std::runtime_error("interrupted") {}
};

constexpr int EXIT_INTERRUPTED = 130;

/// Holds requests to stop back until ListenForInterrupts(). Asks nothing of the libraries, so that
/// it can be called before they are set up.
void HoldSignals();

/// Begins to listen for requests to stop. Work with progress steps ends at its next one. Work
/// without, a read that never comes back, or a second request: then the program ends where it
/// is, after new files that are not complete have been removed. Requests that the caller of the
/// program has set to be ignored, as nohup does, stay ignored.
void ListenForInterrupts();

/// The program is at its end by itself: a request comes too late from now on.
void StopListening();

/// Whether the user asked to stop.
bool Interrupted();

/// Throws Interruption when the user asked to stop; for work between two steps.
void EndIfInterrupted();

/// While one lives, a file of the user's is being changed in place: a request to stop lets that
/// come to its own end.
class ChangeInPlace {
  public:
    ChangeInPlace();
    ~ChangeInPlace();
    ChangeInPlace(const ChangeInPlace&) = delete;
    ChangeInPlace& operator=(const ChangeInPlace&) = delete;
};

} // namespace zelto::host
