// Which of several fields the page shows.
const byId = (id) => document.getElementById(id);

export class FieldChoice {
  /** page.facts.fields: [{name, levels}] of several fields, in the order of page.data.fields. */
  constructor(page) {
    this.page = page;
    this.fields = page.facts.fields ?? [];
    this.shown = 0;
    if (this.fields.length < 2) return;
    const select = byId('field');
    select.append(...this.fields.map(({ name }, k) => new Option(name, k)));
    select.addEventListener('change', () => this.show(Number(select.value)));
    byId('field-choice').hidden = false;
    this.#list();
  }

  /** The field of that number, at the levels that it began with. */
  show(number) {
    if (!(number in this.fields) || number === this.shown) return;
    this.shown = number;
    byId('field').value = number;
    const { page } = this;
    page.answer.close();
    page.setHidden([]);
    page.setField(page.data.fields[number], this.fields[number].levels);
    this.#list();
    page.announce(`Field ${this.fields[number].name}`);
    page.changed();
  }

  /** For the page's address. */
  state() {
    return this.shown > 0 ? { field: this.shown } : {};
  }

  take(state) {
    if (state.has('field')) this.show(Number(state.get('field')));
  }

  /** Conditions with the values of the field that is shown. */
  #list() {
    const { conditions } = this.page.facts;
    this.page.listConditions(conditions.map((condition) => (condition.values ? { ...condition, value: condition.values[this.shown] } : condition)));
  }
}
