"""A triangle mesh with its factorised Laplace system."""

from __future__ import annotations

from ctypes import byref, c_void_p
from typing import Optional, Union

import numpy as np
import numpy.typing as npt

from . import _arrays, _building, _solving, curves as _curves, meshcheck
from ._building import FactorisationInfo
from ._handle import lent
from ._lifetime import SystemOwner
from ._mesh import MeshArrays, vertices_of
from ._native import library
from .curves import Curves
from .errors import FieldError

__all__ = ["FactorisationInfo", "MeshSystem"]


class MeshSystem(SystemOwner):
    """A mesh whose Laplace system is built and factorised once, and solved as often as wanted.

    Every field that goes in or comes out has one value per vertex in the order of the caller's
    arrays. All methods may be called from any number of threads at once and do not hold the
    interpreter's lock while the library works; results are the same bits as alone.

    Parameters
    ----------
    vertices : array_like, shape (n, 3), (n, 2) or (3n,)
        Coordinates, lengths in a unit of yours. A second dimension of 2 means the plane z = 0.
    triangles : array_like, shape (m, 3) or (3m,)
        Vertex numbers, from 0.
    tags : array_like, shape (n,)
        A vertex with tag 1, 2 or 3 is fixed: you give its value when you solve. With any other tag it is
        free. :meth:`from_fixed` takes indices or a mask instead.
    check : bool, default True
        Refuse meshes on which no solve is well posed: with triangles whose area is near zero, or with
        connected parts that have no fixed vertex. False builds these meshes all the same, for a few such
        triangles in a good mesh, or for level curves of fields from elsewhere. What keeps the library
        from working, such as an index out of range, is refused in any case.
    robust : bool, default False
        Take the matrix of a better triangulation of the same surface with the same vertices, where the
        given one is not good. Fields without load then stay within the range of the fixed values,
        whatever the triangles look like, and triangles without area are no defect. See
        :func:`check_robust`.

    Attributes
    ----------
    vertex_count, triangle_count, fixed_count, fixed, order, info, robust
        What it is made of; read-only, each with a text of its own.

    Raises
    ------
    MeshError
        A shape, index, coordinate, tag or triangle is wrong; the message names it.
    SingularSystemError
        With `check`: the factorisation failed.
    TooLargeError
        The system would take more memory than is free; the message has the figures.
    TypeError
        An array does not hold real numbers.
    LibraryError
        The native library cannot be loaded.

    Notes
    -----
    A factorisation's memory grows faster than the mesh; :func:`qelm.predict` says what it takes. Should
    memory run out inside the native library all the same, the process ends: Python cannot catch the
    library's exception.

    A system cannot be pickled. After ``os.fork`` parent and child each have their own.

    Examples
    --------
    A square, two opposite corners held at 0 and 1:

    >>> import qelm
    >>> system = qelm.MeshSystem([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]],
    ...                          [[0, 1, 2], [0, 2, 3]], tags=[1, 0, 1, 0])
    >>> field = system.solve([0, 0, 1, 0])
    >>> print(field)
    [0.  0.5 1.  0.5]
    >>> [round(curve.length, 3) for curve in system.curves(field, [0.25, 0.75])]
    [0.707, 0.707]
    """

    def __init__(
        self,
        vertices: npt.ArrayLike,
        triangles: npt.ArrayLike,
        tags: npt.ArrayLike,
        *,
        check: bool = True,
        robust: bool = False,
    ) -> None:
        xyz = vertices_of(vertices)
        numbers = _arrays.tags(tags, len(xyz))
        self._build(xyz, triangles, numbers, np.flatnonzero((numbers >= 1) & (numbers <= 3)), check, robust)

    @classmethod
    def from_fixed(
        cls,
        vertices: npt.ArrayLike,
        triangles: npt.ArrayLike,
        fixed: npt.ArrayLike,
        *,
        check: bool = True,
        robust: bool = False,
    ) -> MeshSystem:
        """A system from the vertices that are fixed.

        Parameters
        ----------
        vertices, triangles, check, robust
            As for :class:`MeshSystem`.
        fixed : array_like
            Numbers of the fixed vertices, or a mask of shape (n,) and type bool. They get tag 1. Values of
            the fixed vertices alone are taken in the order of the numbers; one that repeats counts once.

        Returns
        -------
        MeshSystem

        Raises
        ------
        MeshError, SingularSystemError, TypeError, LibraryError
            As for :class:`MeshSystem`.

        Examples
        --------
        >>> import qelm
        >>> system = qelm.MeshSystem.from_fixed([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [0, 2])
        >>> system.fixed.tolist()
        [0, 2]
        """
        xyz = vertices_of(vertices)
        numbers = _arrays.fixed_vertices(fixed, len(xyz))
        tags = np.zeros(len(xyz), np.int32)
        tags[numbers] = 1
        system = cls.__new__(cls)
        system._build(xyz, triangles, tags, numbers, check, robust)
        return system

    def _build(
        self,
        xyz: npt.NDArray[np.float64],
        triangles: npt.ArrayLike,
        tags: npt.NDArray[np.int32],
        fixed: npt.NDArray[np.intp],
        check: bool,
        robust: bool,
    ) -> None:
        corners = _arrays.triangle_indices(triangles, len(xyz))
        _arrays.require_finite_vertices(xyz)
        mesh = MeshArrays(xyz, corners, tags)
        if check and meshcheck.inspect(mesh) != 0:
            _building.refuse_defects(mesh, robust)
        self._handle = _building.construct(mesh, robust)
        self._vertex_count, self._triangle_count = len(xyz), len(corners)
        self._fixed = fixed
        self._fixed.flags.writeable = False
        self._robust = bool(robust)
        self._order: Optional[npt.NDArray[np.int32]] = None
        self._info = _building.FactorisationInfo(self._handle.info())
        if check:
            _building.require_factorised(self._info)

    # ---- What it is made of

    @property
    def vertex_count(self) -> int:
        """Number of vertices, n."""
        return self._vertex_count

    @property
    def triangle_count(self) -> int:
        """Number of triangles, m."""
        return self._triangle_count

    @property
    def fixed_count(self) -> int:
        """Number of fixed vertices, t."""
        return len(self._fixed)

    @property
    def info(self) -> FactorisationInfo:
        """How the factorisation ended."""
        return self._info

    @property
    def robust(self) -> bool:
        """Whether it was built with `robust`."""
        return self._robust

    @property
    def fixed(self) -> npt.NDArray[np.intp]:
        """Numbers of the fixed vertices, shape (t,), read-only: as :meth:`from_fixed` got them, else ascending."""
        return self._fixed

    @property
    def order(self) -> npt.NDArray[np.int32]:
        """The native library's own numbering: the input vertex of each of its vertices; (n,) int32, read-only.

        Fixed vertices come first, ascending; then the free ones, descending. ``field[system.order]``
        is a field in *system order*.
        """
        if self._order is None:
            is_free = np.ones(self.vertex_count, bool)
            is_free[self._fixed] = False
            order = np.concatenate([np.sort(self._fixed), np.flatnonzero(is_free)[::-1]]).astype(np.int32)
            order.flags.writeable = False
            self._order = order
        return self._order

    @property
    def system_vertices(self) -> npt.NDArray[np.float64]:
        """Coordinates in system order, shape (n, 3): a read-only view of the library's memory.

        It stays valid as long as it is held, also after the system is closed. Raises ClosedError if the
        system was closed before.
        """
        handle, pointer = self._alive(), c_void_p()
        library().qelverts(handle.pointer, byref(pointer))
        return lent(handle, pointer.value, (self.vertex_count, 3), np.float64)

    @property
    def system_triangles(self) -> npt.NDArray[np.int32]:
        """Triangles in input order, their vertices in system numbering, shape (m, 3): a read-only view.

        Valid as long, and with the same error, as :attr:`system_vertices`.
        """
        handle, pointer = self._alive(), c_void_p()
        library().qeltris(handle.pointer, byref(pointer))
        return lent(handle, pointer.value, (self.triangle_count, 3), np.int32)

    @property
    def vertices(self) -> npt.NDArray[np.float64]:
        """Coordinates in input order, shape (n, 3); a copy. Raises ClosedError if the system is closed."""
        result = np.empty((self.vertex_count, 3))
        result[self.order] = self.system_vertices
        return result

    @property
    def triangles(self) -> npt.NDArray[np.int32]:
        """Triangles as they were given, shape (m, 3); a copy. Raises ClosedError if the system is closed."""
        return self.order[self.system_triangles]

    # ---- Solving

    def solve(
        self,
        values: npt.ArrayLike,
        load: Optional[npt.ArrayLike] = None,
        *,
        out: Optional[npt.NDArray[np.float64]] = None,
    ) -> npt.NDArray[np.float64]:
        """A field, smooth between the values of the fixed vertices; or many such fields at once.

        Parameters
        ----------
        values : array_like, shape (n,), (t,), (k, n) or (k, t)
            In any unit. One value per vertex, read at fixed vertices only, or the values of the t fixed vertices
            alone, in the order of :attr:`fixed`. Two dimensions ask for k fields, which is much faster
            than k calls.
        load : array_like, shape (n,) or (k, n), optional
            Solves K u + load = 0 at free vertices, K being the stiffness matrix; read there alone. No
            mass matrix is applied to it: for the Poisson equation laplace(u) = f pass the integral of f
            times each vertex's hat function, for instance f times a third of the area of the triangles
            around the vertex.
        out : ndarray, float64, C-contiguous, optional
            Receives the result; may be the array of values or loads.

        Returns
        -------
        ndarray, shape (n,) or (k, n), float64
            Fixed vertices have their own value, bit for bit. `out` if it was given.

        Raises
        ------
        FieldError
            A shape is wrong, a number that is read is not finite or masked, or `out` cannot be used.
        SingularSystemError
            The equations have no single finite solution.
        TypeError
            An array does not hold real numbers.
        ClosedError
            The system is closed.

        Examples
        --------
        >>> import qelm
        >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
        >>> print(system.solve([0, 1]))                  # of the fixed vertices alone
        [0.  0.5 1.  0.5]
        >>> print(system.solve([[0, 1], [4, 4]]))        # two fields
        [[0.  0.5 1.  0.5]
         [4.  4.  4.  4. ]]
        >>> print(system.solve([0, 1], load=[0, -1, 0, -1]))
        [0.  1.5 1.  1.5]
        """
        handle = self._alive()
        prescribed = _solving.prescribed_values(values, self._fixed, self._vertex_count)
        loads = None if load is None else self._loads(load)
        return _solving.solve(handle, prescribed, loads, out)

    def _loads(self, load: npt.ArrayLike) -> npt.NDArray[np.float64]:
        array = _arrays.per_vertex(load, self.vertex_count, "load")
        if array is load:
            return array
        return _arrays.unmasked(load, array, "load", self.order[self.fixed_count :])

    def _any_field(self, field: npt.ArrayLike) -> npt.NDArray[np.float64]:
        """(n,) of any values. A masked value becomes NaN, a hole."""
        array = _arrays.doubles(field, "field")
        if array.shape != (self._vertex_count,):
            raise FieldError(f"field: the shape is {array.shape}, must be ({self._vertex_count},): one per vertex")
        if array is not field and isinstance(field, np.ma.MaskedArray):
            return np.where(np.ma.getmaskarray(field), np.nan, np.asarray(array))  # type: ignore[no-untyped-call]
        return array

    # ---- Curves

    def curves(self, field: npt.ArrayLike, levels: Union[int, npt.ArrayLike] = 12) -> Curves:
        """Level curves of a field, as polylines.

        Parameters
        ----------
        field : array_like, shape (n,)
            One value per vertex. Triangles with a NaN or masked corner are holes.
        levels : int or array_like, shape (l,), default 12
            Levels in any order, or how many to take evenly between the smallest and the largest
            value (:func:`even_levels`).

        Returns
        -------
        Curves
            A sequence of :class:`Curve` that has the packed arrays as well.

        Raises
        ------
        FieldError
            A shape is wrong, a level is not finite, or there is no range to put levels in.
        TypeError
            An array does not hold real numbers.
        ClosedError
            The system is closed.

        Examples
        --------
        >>> import qelm
        >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
        >>> for curve in system.curves(system.solve([0, 1]), levels=3):
        ...     print(curve.level, curve.closed, curve.points.round(3).tolist())
        0.25 False [[0.0, 0.5, 0.0], [0.25, 0.25, 0.0], [0.5, 0.0, 0.0]]
        0.5 False [[0.0, 1.0, 0.0], [0.5, 0.5, 0.0], [1.0, 0.0, 0.0]]
        0.75 False [[0.5, 1.0, 0.0], [0.75, 0.75, 0.0], [1.0, 0.5, 0.0]]
        """
        handle = self._alive()
        plain = _curves.cut_plain(handle, self._vertex_count, field, levels)
        if plain is not None:
            return plain
        array = self._any_field(field)
        return _curves.cut(handle, array, _curves.chosen_levels(array, levels))

    # ---- Lifetime

    def duplicate(self) -> MeshSystem:
        """A second system that shares mesh and factorisation, at the cost of a few arrays.

        Returns
        -------
        MeshSystem
            Closed on its own; what both share goes with the last.

        Raises
        ------
        ClosedError
            The system is closed.

        Examples
        --------
        >>> import qelm
        >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
        >>> other = system.duplicate()
        >>> system.use_count
        2
        """
        copy = type(self).__new__(type(self))
        copy.__dict__.update(self.__dict__)
        copy._handle = self._alive().duplicate()
        return copy

    def __enter__(self) -> MeshSystem:
        self._alive()
        return self

    def __copy__(self) -> MeshSystem:
        return self.duplicate()

    def __deepcopy__(self, memo: object) -> MeshSystem:
        return self.duplicate()

    def __repr__(self) -> str:
        state = "closed" if self.closed else f"{self.fixed_count} fixed"
        return f"<qelm.MeshSystem: {self.vertex_count} vertices, {self.triangle_count} triangles, {state}>"
