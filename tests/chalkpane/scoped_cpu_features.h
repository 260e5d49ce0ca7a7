#pragma once

#include "chalkpane/base/cpu_features.h"

namespace chalkpane::test {

// Uses these features until the end of a block, and then again what was used before.
class ScopedCpuFeatures {
public:
    explicit ScopedCpuFeatures(CpuFeatures features) { UseCpuFeatures(features); }
    ~ScopedCpuFeatures() { UseCpuFeatures(m_before); }
    ScopedCpuFeatures(const ScopedCpuFeatures&) = delete;
    ScopedCpuFeatures& operator=(const ScopedCpuFeatures&) = delete;

private:
    CpuFeatures m_before = UsedCpuFeatures();
};

}  // namespace chalkpane::test
