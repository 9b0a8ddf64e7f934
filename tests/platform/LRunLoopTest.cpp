#include "platform/LRunLoop.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

LEvent EventOf(uint32_t kind) { return {FourLetterCode("test"), kind, 0, 0}; }

uint32_t KindOf(const std::optional<LEvent>& event) { return event ? event->kind : 0; }

}  // namespace

TEST(LRunLoop, AReadableSourcePostsItsEventUntilItIsReset) {
    LRunLoop loop;
    LSignalObject quiet;
    LSignalObject ringing;
    loop.AddSource(quiet.ReadDescriptor(), EventOf(1));
    loop.AddSource(ringing.ReadDescriptor(),
                   {FourLetterCode("test"), 2, FourLetterCode("para"), 7});
    EXPECT_FALSE(loop.WaitNextEvent(0).has_value());

    ringing.Set();
    const auto event = loop.WaitNextEvent();
    ASSERT_EQ(KindOf(event), 2u);
    EXPECT_EQ(event->parameterName, FourLetterCode("para"));
    EXPECT_EQ(event->parameter, 7);
    EXPECT_EQ(KindOf(loop.WaitNextEvent()), 2u) << "it still rings";

    ringing.Reset();
    EXPECT_FALSE(loop.WaitNextEvent(0).has_value());
    loop.RemoveSource(ringing.ReadDescriptor());
    ringing.Set();
    EXPECT_FALSE(loop.WaitNextEvent(0).has_value()) << "no source any more";
}

TEST(LRunLoop, ARingingSourceNeitherHoldsBackNorPilesUpEvents) {
    LRunLoop loop;
    LSignalObject ringing;
    ringing.Set();
    loop.AddSource(ringing.ReadDescriptor(), EventOf(9));
    for (uint32_t kind = 1; kind <= 5; ++kind) loop.Post(EventOf(kind));
    for (uint32_t kind = 1; kind <= 5; ++kind) EXPECT_EQ(KindOf(loop.WaitNextEvent()), kind);
    EXPECT_EQ(KindOf(loop.WaitNextEvent()), 9u);
    ringing.Reset();
    EXPECT_FALSE(loop.WaitNextEvent(0).has_value());
}

TEST(LRunLoop, APostFromAnotherThreadEndsTheWait) {
    LRunLoop loop;
    constexpr uint32_t kCount = 200;
    std::thread poster([&] {
        for (uint32_t kind = 1; kind <= kCount; ++kind) loop.Post(EventOf(kind));
    });
    for (uint32_t kind = 1; kind <= kCount; ++kind) {
        ASSERT_EQ(KindOf(loop.WaitNextEvent(5000)), kind);
    }
    poster.join();
}
