// From where a mesh is looked at: directions with names, and the first one.
import { Quaternion, Vector3 } from 'three';

// Towards the viewer, for z up and the front at -y. Straight down would leave open where
// north is: a little of the front remains.
export const kViews = {
  front: [0, -1, 0],
  back: [0, 1, 0],
  left: [-1, 0, 0],
  right: [1, 0, 0],
  top: [0, -1e-3, 1],
  iso: [0.55, -1, 0.62],
};
const kFromAbove = [0.38, -0.85, 0.95]; // for roofs, so that one sees through their holes

const kBehind = [0, 1, 0]; // up in a picture from above

const kFlat = 1e-3; // of the largest extent
const kRoof = 0.35; // of the smaller extent across

const kUpVectors = { x: new Vector3(1, 0, 0), y: new Vector3(0, 1, 0), z: new Vector3(0, 0, 1) };

/** A direction given for z up, for a mesh that stands along another axis. */
export function turnedUp([x, y, z], up) {
  if (up === 'y') return new Vector3(x, z, -y);
  if (up === 'x') return new Vector3(z, x, y);
  return new Vector3(x, y, z);
}

export const upVector = (up) => kUpVectors[up].clone();

/** {toward, up} of a view that has a name, for a mesh that stands along `up`. */
export const namedView = (name, up) => ({ toward: turnedUp(kViews[name], up), up: upVector(up) });

/**
 * {toward, up} with which a page begins, and, as `or`, another `toward` that may show a long mesh
 * larger in a narrow window. facts: {up, toward}; size: extents along x, y, z.
 */
export function firstView(facts, size) {
  const up = facts.up ?? 'z';
  if (facts.toward) {
    const toward = new Vector3(...facts.toward);
    const along = Math.abs(toward.clone().normalize().dot(upVector(up))) > 0.999;
    return { toward, up: along ? turnedUp(kBehind, up) : upVector(up) };
  }
  // A drawing in a plane is looked at straight, not across.
  const flat = ['z', 'y', 'x'].find((axis) => size['xyz'.indexOf(axis)] < kFlat * Math.max(...size));
  if (flat === up) return { toward: upVector(up), up: turnedUp(kBehind, up) };
  if (flat === 'y') return { toward: new Vector3(0, -1, 0), up: upVector(up) };
  if (flat === 'z') return { toward: new Vector3(0, 0, 1), up: upVector(up) };
  if (flat === 'x') return { toward: new Vector3(1, 0, 0), up: upVector(up) };
  const across = [0, 1, 2].filter((axis) => 'xyz'[axis] !== up).map((axis) => size[axis]);
  const isRoof = size['xyz'.indexOf(up)] < kRoof * Math.min(...across);
  const [x, y, z] = isRoof ? kFromAbove : kViews.iso;
  return { toward: turnedUp([x, y, z], up), or: turnedUp([-y, -x, z], up), up: upVector(up) };
}

/** Turns `up` to y, which three.js's angles are counted from. */
export const toThree = (up) => new Quaternion().setFromUnitVectors(up, kUpVectors.y);
