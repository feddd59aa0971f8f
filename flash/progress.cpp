#include "flash/progress.h"

#include <atomic>

namespace Interface::FlashMod {
namespace {

std::atomic<ProgressObserver> currentObserver{nullptr};

}  // namespace

void SetProgressObserver(ProgressObserver observer) {
    currentObserver = observer;
}

void reportProgress(unsigned int done, unsigned int total) {
    if (ProgressObserver const observer = currentObserver) {
        observer(done, total);
    }
}

}  // namespace Interface::FlashMod
