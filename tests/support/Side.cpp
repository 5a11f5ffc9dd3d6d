// The side of each thread.

#include "tests/support/Side.h"

using namespace corvane::test;

static thread_local Side current = Side::Outside;

Side corvane::test::sideOfThread() { return current; }

OnSide::OnSide(Side side) : before(current) { current = side; }

OnSide::~OnSide() { current = before; }
