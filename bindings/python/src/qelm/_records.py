"""The records of the C header, field by field; arrays as addresses, None for null."""

from __future__ import annotations

import ctypes
from ctypes import c_double, c_int64, c_void_p
from typing import Optional


class IsoPointMatrix(ctypes.Structure):
    """Ends of segments, stored column by column."""

    data: Optional[int]
    rows: int
    cols: int
    _fields_ = [("data", c_void_p), ("rows", c_int64), ("cols", c_int64)]


class IsoEdgeMatrix(ctypes.Structure):
    """Which points belong together, stored column by column."""

    data: Optional[int]
    rows: int
    cols: int
    _fields_ = [("data", c_void_p), ("rows", c_int64), ("cols", c_int64)]


class QelmCurves(ctypes.Structure):
    """Level curves, packed."""

    curveCount: int
    pointCount: int
    points: Optional[int]
    starts: Optional[int]
    levels: Optional[int]
    closed: Optional[int]
    _fields_ = [
        ("curveCount", c_int64),
        ("pointCount", c_int64),
        ("points", c_void_p),
        ("starts", c_void_p),
        ("levels", c_void_p),
        ("closed", c_void_p),
    ]


class QelmFinding(ctypes.Structure):
    """How often something was found, and where first."""

    count: int
    first: int
    _fields_ = [("count", c_int64), ("first", c_int64)]


class QelmRobustReport(ctypes.Structure):
    """What the robust construction does to a mesh."""

    changed: int
    sheets: int
    flatTriangles: int
    notDelaunayEdges: int
    flips: int
    _fields_ = [
        ("changed", c_int64),
        ("sheets", c_int64),
        ("flatTriangles", c_int64),
        ("notDelaunayEdges", c_int64),
        ("flips", c_int64),
    ]


class QelmPrediction(ctypes.Structure):
    """What constructing a system takes."""

    factorEntries: int
    handleBytes: int
    peakBytes: int
    multiplications: float
    _fields_ = [
        ("factorEntries", c_int64),
        ("handleBytes", c_int64),
        ("peakBytes", c_int64),
        ("multiplications", c_double),
    ]


class QelmMeshReport(ctypes.Structure):
    """What the check of a mesh found."""

    indexOutOfRange: QelmFinding
    repeatedVertex: QelmFinding
    unusedVertex: QelmFinding
    notFinite: QelmFinding
    nearZeroArea: QelmFinding
    sizeOutOfRange: QelmFinding
    untaggedPart: QelmFinding
    part: QelmFinding
    taggedVertex: QelmFinding
    crowdedEdge: QelmFinding
    boundaryLoop: QelmFinding
    opposedEdge: QelmFinding
    repeatedTriangle: QelmFinding
    coincidentVertex: QelmFinding
    worstTriangle: int
    worstQuality: float
    _fields_ = [
        ("indexOutOfRange", QelmFinding),
        ("repeatedVertex", QelmFinding),
        ("unusedVertex", QelmFinding),
        ("notFinite", QelmFinding),
        ("nearZeroArea", QelmFinding),
        ("sizeOutOfRange", QelmFinding),
        ("untaggedPart", QelmFinding),
        ("part", QelmFinding),
        ("taggedVertex", QelmFinding),
        ("crowdedEdge", QelmFinding),
        ("boundaryLoop", QelmFinding),
        ("opposedEdge", QelmFinding),
        ("repeatedTriangle", QelmFinding),
        ("coincidentVertex", QelmFinding),
        ("worstTriangle", c_int64),
        ("worstQuality", c_double),
    ]
