// The list of levels: what each curve says, how long it is, whether it is drawn.
import { lengthOf } from './curves.js';
import { readable } from './levels.js';

/** Fills `list`, an element, with the levels of a page; `hide(level, isHidden)`. */
export function fillLevelList(list, page) {
  const { surface } = page;
  const lengths = page.levels.map(() => 0);
  surface.traced.levels.forEach((l, c) => (lengths[l] += lengthOf(surface.traced, c) * surface.place.radius));
  list.replaceChildren(
    ...page.levels.map((level, l) => {
      const item = document.createElement('li');
      const label = document.createElement('label');
      const box = document.createElement('input');
      const length = document.createElement('span');
      box.type = 'checkbox';
      box.checked = surface.isLevelShown(l);
      box.addEventListener('change', () => page.hideLevel(level, !box.checked));
      length.className = 'length';
      length.textContent = `${readable(lengths[l])} long`;
      label.append(box, page.levelText(l), length);
      item.append(label);
      return item;
    }),
  );
}
