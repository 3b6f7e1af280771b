#pragma once

// Lets listeners run with no lock held, and lets a detach wait until no other thread is inside the listener.
// It works under its owner's mutex.

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

class CallGate {
public:
    // One call of a listener: gives the lock up while it lives.
    class Call {
    public:
        Call(CallGate & gate, std::unique_lock<std::mutex> & lock, void const * listener)
            : gate(gate), lock(lock), visit(listener, std::this_thread::get_id()) {
            gate.visits.push_back(visit);
            lock.unlock();
        }

        Call(Call const &) = delete;
        Call & operator=(Call const &) = delete;

        ~Call() {
            lock.lock();
            gate.visits.erase(std::find(gate.visits.begin(), gate.visits.end(), visit));
            gate.left.notify_all();
        }

    private:
        CallGate & gate;
        std::unique_lock<std::mutex> & lock;
        std::pair<void const *, std::thread::id> visit;
    };

    // Waits while a thread is inside the listener, unless this thread is inside itself. The listener must not
    // be called anew meanwhile.
    void AwaitEmpty(std::unique_lock<std::mutex> & lock, void const * listener) {
        std::pair const own(listener, std::this_thread::get_id());
        if (std::find(visits.begin(), visits.end(), own) != visits.end())
            return;
        left.wait(lock, [&] {
            return std::none_of(visits.begin(), visits.end(),
                                [&](auto const & visit) { return visit.first == listener; });
        });
    }

private:
    std::vector<std::pair<void const *, std::thread::id>> visits;
    std::condition_variable left;
};
