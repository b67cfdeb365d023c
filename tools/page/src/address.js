// What is shown, as the fragment of the page's address: a link shows the same again.
import { evenLevels } from './levels.js';

const kSoon = 250; // milliseconds after the last change
const kDigits = 6;
const kShown = { heatMap: 'h', curves: 'c', values: 'v', edges: 'e', fixed: 'f' };

const numbers = (text) => text.split(',').map(Number);
const isAll = (list) => list.every(Number.isFinite);

function levelsText(page) {
  const { levels, surface } = page;
  const { low, high } = surface.range;
  const even = evenLevels(low, high, levels.length);
  return even.length === levels.length && even.every((l, k) => l === levels[k]) ? { n: levels.length } : { levels: levels.join() };
}

/** The state of a page, without what is as the page had it at first. */
export function fragmentOf(page) {
  const state = { ...levelsText(page) };
  const hidden = page.levels.flatMap((level, l) => (page.surface.isLevelShown(l) ? [] : [l]));
  if (hidden.length > 0) state.hide = hidden.join();
  state.show = Object.entries(kShown)
    .filter(([name]) => page.surface.shown[name])
    .map(([, letter]) => letter)
    .join('');
  if (page.theme !== 'auto') state.theme = page.theme;
  const view = page.navigation.state();
  if (view) state.view = view.map((c) => Number(c.toFixed(kDigits))).join();
  Object.assign(state, page.ownState());
  for (const [name, text] of Object.entries(page.firstState ?? {})) if (String(state[name]) === String(text)) delete state[name];
  return new URLSearchParams(state).toString().replaceAll('%2C', ',');
}

/** Makes a page look as a fragment says. What it does not say, or says wrongly, stays. */
export function applyFragment(page, fragment) {
  const state = new URLSearchParams(fragment.replace(/^#/, ''));
  page.takeOwnState(state);
  if (state.has('n')) page.setLevelCount(Number(state.get('n')));
  if (state.has('levels') && isAll(numbers(state.get('levels'))))
    page.setLevels(numbers(state.get('levels')).sort((a, b) => a - b).slice(0, 200));
  if (state.has('hide')) page.setHidden(numbers(state.get('hide')).map((l) => page.levels[l]));
  if (state.has('show'))
    page.show(Object.fromEntries(Object.entries(kShown).map(([name, letter]) => [name, state.get('show').includes(letter)])));
  if (['light', 'dark'].includes(state.get('theme'))) page.setTheme(state.get('theme'));
  const view = numbers(state.get('view') ?? '');
  if (view.length === 9 && isAll(view)) page.navigation.take(view);
}

/** Keeps the address up to date, and follows it. */
export function followAddress(page) {
  let timer = 0;
  const given = window.location.hash;
  page.firstState = Object.fromEntries(new URLSearchParams(fragmentOf(page)));
  const write = () => {
    const fragment = fragmentOf(page);
    try {
      window.history.replaceState(null, '', fragment ? `#${fragment}` : window.location.pathname + window.location.search);
    } catch {
      // Some browsers keep addresses of local files as they are; "Copy link" still has the state.
    }
  };
  if (given.length > 1) applyFragment(page, given);
  window.addEventListener('hashchange', () => applyFragment(page, window.location.hash));
  return () => {
    clearTimeout(timer);
    timer = setTimeout(write, kSoon);
  };
}

/** The page's address with all of its state. */
export const linkTo = (page) => {
  const fragment = fragmentOf(page);
  return window.location.href.replace(/#.*/, '') + (fragment ? `#${fragment}` : '');
};
