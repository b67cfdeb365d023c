// The cards round the mesh: folded and unfolded, on phones one at a time.

const kMargin = 6; // pixels that the mesh keeps from cards
const kTabs = { facts: 'Values', curves: 'Curves', view: 'View' };

const byId = (id) => document.getElementById(id);

export class Panels {
  /** `changed()` is called when what the cards cover is another part of the window. */
  constructor(changed) {
    this.changed = changed;
    this.root = document.documentElement;
    this.tabs = Object.entries(kTabs).map(([name, text]) => {
      const tab = document.createElement('button');
      tab.type = 'button';
      tab.textContent = text;
      tab.dataset.tab = name;
      tab.setAttribute('aria-controls', name === 'facts' ? 'values' : name);
      tab.addEventListener('click', () => this.open(this.opened === name ? null : name));
      return tab;
    });
    byId('tabs').append(...this.tabs);
    byId('fold').addEventListener('click', () => this.fold());
    for (const details of document.querySelectorAll('#side details'))
      details.addEventListener('toggle', () => this.#settled());
    this.open(null);
  }

  /** On phones: the panel of that name, or none. */
  open(name) {
    this.opened = name;
    this.root.classList.toggle('open', name !== null);
    for (const tab of this.tabs) {
      this.root.classList.toggle(`open-${tab.dataset.tab}`, tab.dataset.tab === name);
      tab.setAttribute('aria-expanded', String(tab.dataset.tab === name));
    }
    this.#settled();
  }

  /** Elsewhere: all panels but the name of the mesh away, or back. */
  fold() {
    if (this.areTabs) return this.open(null);
    const folded = this.root.classList.toggle('folded');
    byId('fold').setAttribute('aria-expanded', String(!folded));
    this.#settled();
  }

  get areTabs() {
    return getComputedStyle(byId('tabs')).display !== 'none';
  }

  /** What the cards cover of the window: {left, right, top, bottom} each. */
  covered() {
    const cards = this.areTabs
      ? ['#facts header', '#values', '#curves', '#view', '#tabs', '#scale-card']
      : ['#facts', '#curves', '#view', '#scale-card'];
    return cards
      .map((card) => document.querySelector(card).getBoundingClientRect())
      .filter(({ width, height }) => width > 0 && height > 0)
      .map(({ left, right, top, bottom }) => ({
        left: left - kMargin,
        right: right + kMargin,
        top: top - kMargin,
        bottom: bottom + kMargin,
      }));
  }

  #settled() {
    // What scrolls can be scrolled by keys, too.
    const values = byId('values');
    if (values.scrollHeight > values.clientHeight + 1) values.tabIndex = 0;
    else values.removeAttribute('tabindex');
    this.changed();
  }
}
