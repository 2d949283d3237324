// Sessions for tests that draw.
#pragma once

#include <gtest/gtest.h>
#include <veldris/Session.h>

/// Opens a session on the software rasteriser, without a cache unless the options name a folder. A failed
/// assertion when it cannot; call it as
///
///     ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
inline void openOnSoftware(veldris::Session& session, veldris::DrawingOptions options = {}) {
    options.device = "software";
    options.noCache = options.cache.empty();
    ovMemory::String error;
    ASSERT_TRUE(session.open(options, error)) << error;
}
