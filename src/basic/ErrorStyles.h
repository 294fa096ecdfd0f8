#pragma once

// The two ways a routine of this program deals with a run-time error.
//
// ResumeNext: each statement runs on its own; one that fails is skipped and
// the next one runs. The last error number stays readable, as routines
// sometimes look at it afterwards.
//
//     basic::ResumeNext next;
//     next([&] { a = fdiv(x, y); });
//     next([&] { b = CInt(a); });
//
// exitOnError: the body runs until a statement fails; the routine then leaves
// through its one exit and answers the fallback (false for a Boolean routine).
//
// Only RuntimeError is caught: anything else is a programming fault and must
// not be hidden.

#include "basic/RuntimeError.h"

#include <utility>

namespace basic {

class ResumeNext {
public:
    template <class Statement>
    void operator()(Statement &&statement)
    {
        try {
            std::forward<Statement>(statement)();
        } catch (const RuntimeError &e) {
            m_number = e.number();
        }
    }

    int Err() const { return m_number; }
    void clear() { m_number = 0; }

private:
    int m_number = 0;
};

template <class Result, class Body>
Result exitOnError(Result fallback, Body &&body)
{
    try {
        return std::forward<Body>(body)();
    } catch (const RuntimeError &) {
        return fallback;
    }
}

template <class Body>
bool falseOnError(Body &&body)
{
    return exitOnError(false, std::forward<Body>(body));
}

} // namespace basic
