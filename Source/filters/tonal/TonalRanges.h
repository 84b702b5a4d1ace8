#ifndef KELADJUST_FILTERS_TONAL_TONALRANGES_H
#define KELADJUST_FILTERS_TONAL_TONALRANGES_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

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
