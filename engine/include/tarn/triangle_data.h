#pragma once

namespace tarn {

/// One triangle as three vertices, in the frame and length unit of whoever hands it over. The order of the
/// vertices fixes the direction of the normal, (V1 - V0) x (V2 - V0), which is never normalised.
struct TriangleData {
    ///@{
    /// A coordinate of the first, second or third vertex.
    double v0x, v0y, v0z;
    double v1x, v1y, v1z;
    double v2x, v2y, v2z;
    ///@}
};

/// Two triangles, for example one of each body of an interfering couple.
struct TriangleDataPair {
    TriangleData first;   ///< of the first body
    TriangleData second;  ///< of the second body
};

/// A segment as two points. Where it comes from two triangles, P1 belongs to the first and P2 to the second.
struct SegmentData {
    ///@{
    /// A coordinate of the first or second point.
    double P1X, P1Y, P1Z;
    double P2X, P2Y, P2Z;
    ///@}
};

}  // namespace tarn
