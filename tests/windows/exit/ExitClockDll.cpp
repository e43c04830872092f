// A host DLL that keeps a playing clock as a static object. The system ends its player when
// the process ends; the clock's destructor runs after that.
#include <zbBase/simulation/CzbTimeManagerAdv.h>

#include <windows.h>

namespace {

zbBase::CzbTimeManagerAdv s_clock;
std::atomic<int> s_ticks{0};

void onMessage(int message, void*) {
    if (message == 3) {
        ++s_ticks;
    }
}

} // namespace

// Plays the clock and returns true once the player has ticked a few times.
extern "C" __declspec(dllexport) bool startWork(const char*) {
    s_clock.setMsgCallbackFunc(onMessage, nullptr);
    s_clock.SetPlay();
    for (int wait = 0; wait < 5000 && s_ticks.load() < 3; ++wait) {
        Sleep(1);
    }
    return s_clock.m_threadState.load() == 1 && s_ticks.load() >= 3;
}
