#pragma once

#include <QImage>
#include <vector>

#include "platform/verification/elementpairs.h"

namespace Tamrix {

/// How much of an element's picture differs.
struct PictureDifference {
    /// Its own pixels that both pictures show, and those of them that differ.
    qint64 compared = 0;
    qint64 differing = 0;
};

/// Compares the pictures of two trees element by element. Of each element only the pixels count
/// that neither its children nor others cover, and what has moved is compared at its new place.
class ElementPictures {
public:
    /// The pictures show the whole of the roots; they are not null. `colorTolerance` is by how much
    /// a channel of a pixel may differ.
    ElementPictures(const ElementPairs& pairs, const QImage& expected, const QImage& observed,
                    int colorTolerance);

    /// For each expected element, in the order of the pairs.
    const std::vector<PictureDifference>& differences() const { return m_differences; }
    /// The observed picture, pale, with what differs in red and frames around these elements: of
    /// the expected ones dashed, at the places where they should be.
    QImage picture(const std::vector<int>& framedExpected,
                   const std::vector<int>& framedObserved) const;

private:
    const ElementPairs& m_pairs;
    QImage m_observed;
    double m_expectedScale;
    double m_observedScale;
    std::vector<PictureDifference> m_differences;
    /// Of the observed picture.
    QImage m_differing;
};

}  // namespace Tamrix
