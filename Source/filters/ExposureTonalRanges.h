#ifndef KELADJUST_FILTERS_EXPOSURETONALRANGES_H
#define KELADJUST_FILTERS_EXPOSURETONALRANGES_H

#include "filters/ColourKernel.h"
#include "filters/PixelKernel.h"

namespace keladjust {

/// Every channel times 2^(exposure / 50 * 0.6).
class ExposureKernel final : public TableKernel, public ColourKernel {
public:
    explicit ExposureKernel(float exposure);
    bool active() const override { return active_; }
    void change(ColourRun& run) const override;

private:
    bool active_;
    float factor_;
};

/// Lifts by a coefficient that grows with the pixel's largest channel.
class HighlightKernel final : public PixelKernel, public ColourKernel {
public:
    explicit HighlightKernel(float highlight);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

/// Lifts by a coefficient that falls with the pixel's largest channel; positive settings act four
/// times as strongly as negative ones.
class ShadowKernel final : public PixelKernel, public ColourKernel {
public:
    explicit ShadowKernel(float shadow);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

/// As highlights, but a positive lift is done twice, and results are clamped.
class WhiteLevelKernel final : public PixelKernel, public ColourKernel {
public:
    explicit WhiteLevelKernel(float level);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

/// As shadows with the strengths the other way round, and clamped.
class BlackLevelKernel final : public PixelKernel, public ColourKernel {
public:
    explicit BlackLevelKernel(float level);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

}  // namespace keladjust

#endif
