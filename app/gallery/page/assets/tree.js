'use strict';

// A tree of entries (see catalogue.js) by the ARIA pattern: one stop of the Tab key, arrows inside. Children are made when
// their parent is first opened.
class Tree {
  #root;
  #select;
  #entries = new Map();   // by id: {entry, parent}
  #elements = new Map();  // by id, of those that were made
  #current = null;        // the element that Tab stops at

  // Calls select(entry) when the reader chooses one.
  constructor(root, entries, select) {
    this.#root = root;
    this.#select = select;
    this.#enter(entries, null);
    this.#fill(root, entries, 1);
    this.#setCurrent(root.firstElementChild);
    root.addEventListener('click', (event) => this.#click(event));
    root.addEventListener('keydown', (event) => this.#key(event));
  }

  find(id) { return this.#entries.get(id)?.entry ?? null; }

  expand(id) { this.#setExpanded(this.#element(id), true); }

  // Marks the entry, if it is in this tree, opens what it is below and takes the mark from the one before.
  mark(id) {
    this.#root.querySelector('[aria-selected="true"]')?.setAttribute('aria-selected', 'false');
    if (!this.#entries.has(id)) return;
    const element = this.#element(id);
    element.setAttribute('aria-selected', 'true');
    this.#setCurrent(element);
  }

  #enter(entries, parent) {
    for (const entry of entries) {
      this.#entries.set(entry.id, {entry, parent});
      this.#enter(entry.children, entry.id);
    }
  }

  #element(id) {
    if (!this.#elements.has(id)) this.expand(this.#entries.get(id).parent);
    return this.#elements.get(id);
  }

  #fill(list, entries, level) {
    list.append(...entries.map((entry, at) => this.#make(entry, level, at + 1, entries.length)));
  }

  #make(entry, level, position, size) {
    const item = document.createElement('li');
    const attributes = {
      'role': 'treeitem', 'tabindex': -1, 'aria-level': level, 'aria-posinset': position, 'aria-setsize': size,
      'aria-selected': false, 'aria-label': `${entry.label}, ${picturesText(entry.count)}`,
    };
    if (entry.children.length > 0) attributes['aria-expanded'] = false;
    for (const [name, value] of Object.entries(attributes)) item.setAttribute(name, value);
    item.entryId = entry.id;
    const row = item.appendChild(document.createElement('div'));
    row.className = 'row';
    row.title = entry.note || entry.label;
    row.style.setProperty('--level', level - 1);
    for (const [name, text] of [['twisty', ''], ['label', entry.label], ['count', numberText.format(entry.count)]]) {
      const part = row.appendChild(document.createElement('span'));
      part.className = name;
      part.textContent = text;
    }
    this.#elements.set(entry.id, item);
    return item;
  }

  #isExpanded(item) { return item.getAttribute('aria-expanded') === 'true'; }

  #setExpanded(item, expanded) {
    if (!item.hasAttribute('aria-expanded')) return;
    if (expanded && !item.querySelector('ul')) {
      const list = item.appendChild(document.createElement('ul'));
      list.setAttribute('role', 'group');
      this.#fill(list, this.find(item.entryId).children, Number(item.getAttribute('aria-level')) + 1);
    }
    item.setAttribute('aria-expanded', String(expanded));
    if (!expanded && item.contains(this.#current)) this.#setCurrent(item);
  }

  #setCurrent(item) {
    this.#current?.setAttribute('tabindex', '-1');
    item?.setAttribute('tabindex', '0');
    this.#current = item;
  }

  #focus(item) {
    if (!item) return;
    this.#setCurrent(item);
    item.focus();
    item.firstElementChild.scrollIntoView({block: 'nearest'});
  }

  #click(event) {
    const item = event.target.closest('li');
    if (!item) return;
    if (event.target.classList.contains('twisty')) {
      this.#setExpanded(item, !this.#isExpanded(item));
    } else {
      this.#focus(item);
      this.#select(this.find(item.entryId));
    }
  }

  #key(event) {
    if (event.altKey || event.ctrlKey || event.metaKey) return;
    const item = this.#current;
    const moves = {
      ArrowDown: () => this.#focus(this.#after(item)),
      ArrowUp: () => this.#focus(this.#before(item)),
      ArrowRight: () => (this.#isExpanded(item) ? this.#focus(this.#after(item)) : this.#setExpanded(item, true)),
      ArrowLeft: () => (this.#isExpanded(item) ? this.#setExpanded(item, false) : this.#focus(this.#parent(item))),
      Home: () => this.#focus(this.#root.firstElementChild),
      End: () => this.#focus(this.#lastIn(this.#root.lastElementChild)),
      Enter: () => this.#select(this.find(item.entryId)),
      ' ': () => this.#select(this.find(item.entryId)),
    };
    if (!moves[event.key]) return;
    event.preventDefault();
    moves[event.key]();
  }

  #parent(item) { return item.parentElement.closest('li'); }

  #after(item) {
    if (this.#isExpanded(item)) return item.querySelector('li');
    while (item && !item.nextElementSibling) item = this.#parent(item);
    return item?.nextElementSibling;
  }

  #before(item) {
    return item.previousElementSibling ? this.#lastIn(item.previousElementSibling) : this.#parent(item);
  }

  #lastIn(item) {
    while (this.#isExpanded(item)) item = item.querySelector(':scope > ul').lastElementChild;
    return item;
  }
}
