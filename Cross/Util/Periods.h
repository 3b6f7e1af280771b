#pragma once

// Timers that run in a circle. Private to the library.

// Takes whole periods off a timer, one by one in floats. A timer that does not become lower by that, because
// it is too large or NaN, starts anew.
inline float WithoutPeriods(float timer, float period) {
    while (!(timer <= period)) {
        float const lower = timer - period;
        if (!(lower < timer))
            return 0.0f;
        timer = lower;
    }
    return timer;
}
