"""What solves take and give."""

import numpy as np
import pytest
import qelm
from meshes import bits, grid, square

VERTICES, TRIANGLES, TAGS = grid(12, 9)
N, FIXED = len(VERTICES), np.flatnonzero(TAGS)


@pytest.fixture(scope="module")
def system():
    return qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)


def test_a_linear_field_on_a_flat_sheet_comes_back():
    vertices, triangles, tags = grid(8, 6, height=lambda x, y: 0 * x)
    exact = 3 * vertices[:, 0] - 1
    assert qelm.MeshSystem(vertices, triangles, tags).solve(exact) == pytest.approx(exact, abs=1e-12)


def test_fixed_vertices_keep_their_bits_and_others_are_not_read(system):
    values = np.full(N, np.nan)
    values[FIXED] = np.where(FIXED % 2, -0.0, 1e-300)
    assert (bits(system.solve(values)[FIXED]) == bits(values[FIXED])).all()


def test_values_of_the_fixed_vertices_alone_give_the_same_bits(system):
    values = np.cos(np.arange(N))
    assert (bits(system.solve(values[FIXED])) == bits(system.solve(values))).all()
    many = np.stack([values, 2 * values, -values])
    assert (bits(system.solve(many[:, FIXED])) == bits(system.solve(many))).all()


def test_with_every_vertex_fixed_the_field_is_the_values():
    vertices, triangles, _ = square()
    system = qelm.MeshSystem(vertices, triangles, [1, 2, 3, 1])
    assert system.solve([4, 5, 6, 7]).tolist() == [4, 5, 6, 7]
    assert (system.fixed_count, system.order.tolist()) == (4, [0, 1, 2, 3])


def test_a_load_of_ones_bends_the_field_everywhere_between(system):
    free = np.setdiff1d(np.arange(N), FIXED)
    assert (system.solve(np.zeros(N), np.ones(N))[free] < 0).all()


def test_one_load_with_many_fields_and_many_loads_with_one_field(system):
    values, loads = np.random.default_rng(1).uniform(-1, 1, (2, 3, N))
    for k in range(3):
        assert (bits(system.solve(values, loads[0])[k]) == bits(system.solve(values[k], loads[0]))).all()
        assert (bits(system.solve(values[0], loads)[k]) == bits(system.solve(values[0], loads[k]))).all()


def test_no_fields_are_no_fields(system):
    assert system.solve(np.empty((0, N))).shape == (0, N)


def test_results_go_into_out_also_when_it_is_the_input(system):
    values, load = np.sin(np.arange(N)), np.cos(np.arange(N))
    expected = bits(system.solve(values, load))
    out = np.empty(N)
    assert system.solve(values, load, out=out) is out and (bits(out) == expected).all()
    for which in (0, 1):
        arrays = [values.copy(), load.copy()]
        assert (bits(system.solve(*arrays, out=arrays[which])) == expected).all()


def test_out_that_overlaps_the_input_otherwise_gets_the_right_result(system):
    memory = np.sin(np.arange(42.0 * N))
    values = memory[: 40 * N].reshape(40, N)
    expected = bits(system.solve(values.copy()))
    out = memory[N : 41 * N].reshape(40, N)
    assert (bits(system.solve(values, out=out)) == expected).all()


@pytest.mark.parametrize(
    "out",
    [np.empty(N + 1), np.empty((1, N)), np.empty(N, np.float32), np.empty(2 * N)[::2], np.empty(N, ">f8"), [0.0] * N],
    ids=["length", "shape", "float32", "strided", "big-endian", "list"],
)
def test_out_of_another_kind_is_refused(system, out):
    with pytest.raises(qelm.FieldError, match=rf"^out: an array of shape \({N},\) and type float64"):
        system.solve(np.zeros(N), out=out)


def test_out_that_is_read_only_is_refused_and_keeps_its_values(system):
    out = np.full(N, 7.0)
    out.flags.writeable = False
    with pytest.raises(qelm.FieldError, match="writeable"):
        system.solve(np.zeros(N), out=out)
    assert (out == 7).all()


def test_out_may_be_a_file(system, tmp_path):
    values = np.sin(np.arange(N))
    out = np.memmap(tmp_path / "field", float, "w+", shape=(N,))
    assert system.solve(values, out=out) is out
    out.flush()
    assert (np.fromfile(tmp_path / "field") == system.solve(values)).all()


def test_wrong_numbers_leave_out_alone(system):
    out = np.full(N, 7.0)
    with pytest.raises(qelm.FieldError):
        system.solve(np.where(TAGS, np.inf, 0), out=out)
    assert (out == 7).all()


def test_inputs_are_not_changed(system):
    values, load = np.sin(np.arange(2.0 * N)).reshape(2, N)
    kept = values.copy(), load.copy()
    system.solve(values, load)
    assert (values == kept[0]).all() and (load == kept[1]).all()


@pytest.mark.parametrize(
    "values, load, message",
    [
        (np.zeros(N + 1), None, rf"values: the shape is \({N + 1},\), must be \({N},\) for all vertices or \({len(FIXED)},\)"),
        (0.0, None, r"values: the shape is \(\)|values: the shape is \(1,\)"),
        (np.zeros((1, 1, N)), None, r"values: the shape is \(1, 1,"),
        (np.where(np.arange(N) == FIXED[3], np.nan, 0), None, f"values: vertex {FIXED[3]}: nan is not finite"),
        (np.where(np.arange(len(FIXED)) == 3, np.inf, 0), None, f"values: vertex {FIXED[3]}: inf is not finite"),
        (np.zeros((2, N)), np.zeros((3, N)), "load: 3 loads for 2 fields"),
        (np.zeros(N), np.zeros(5), r"load: the shape is \(5,\)"),
        (np.zeros(N), np.where(TAGS, 0, np.nan), "load: vertex 1: nan"),
        ([[0] * N, [0] * (N - 1) + [np.nan]], None, f"values: field 1, vertex {N - 1}: nan"),
    ],
)  # fmt: skip
def test_wrong_values_and_loads_are_named(system, values, load, message):
    with pytest.raises(qelm.FieldError, match=message):
        system.solve(values, load)


def test_a_load_may_be_anything_at_fixed_vertices(system):
    load = np.where(TAGS, np.nan, 1)
    assert np.isfinite(system.solve(np.zeros(N), load)).all()


def test_numbers_too_large_to_solve_with_name_a_vertex(system):
    with pytest.raises(qelm.SingularSystemError, match=r"vertex \d+: the solution is (nan|inf|-inf)"):
        system.solve(np.full(N, 1.7e308), np.full(N, -1.7e308))


def test_masked_values_count_at_fixed_vertices_alone(system):
    values = np.ma.masked_array(np.arange(float(N)), mask=TAGS == 0)
    assert (bits(system.solve(values)) == bits(system.solve(np.arange(N)))).all()
    values[FIXED[2]] = np.ma.masked
    with pytest.raises(qelm.FieldError, match=f"values: vertex {FIXED[2]}: .* is masked"):
        system.solve(values)
