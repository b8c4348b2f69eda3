#pragma once

#include <animationmodel/Animation.h>

/// Joins keys of a rendered or recorded show: each layer sends what it sent at every multiple of
/// `step` milliseconds, and has as many keys as before at most.
///
///     sends     | 0  20  40 | 60  60  60 |         at the start of each step
///     before    | 0| 20| 40 | 60         |         Holds
///     after     | 0 to 80       | 60     |         a Transition and a Hold
///
/// Each new key begins with what is sent at its first step. It is a Hold or else a Transition, and
/// lasts as long as one that stays from 0 to 255 sends the same. Values keep so far from the halves
/// between two numbers that rounding at cuts does not change what is sent. NoValue and Wait stay.
/// Costs all keys and the steps of those that move.
void fit(Kiv::Animation& show, unsigned int step);
