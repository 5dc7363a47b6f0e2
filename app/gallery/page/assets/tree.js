'use strict';

// A tree of entries (see catalogue.js) after the ARIA pattern: Tab focuses one line, arrow keys move between lines. All lines
// have the same height. The document holds only the lines in view, a few around them, and the line that Tab focuses.
class Tree {
  static #LINES_AROUND = 8;

  #scroller;
  #root;
  #select;
  #nodes = new Map();  // by the entry's id: {entry, parent, children, level, position, isOpen, at (place in #lines)}
  #top;                // nodes
  #lines = [];         // nodes that are not below a closed node
  #items = new Map();  // elements in the document, by node
  #current;            // node of the line that Tab focuses
  #marked = null;      // node

  // Shows the entries in `root`, which `scroller` scrolls. Calls select(entry) when the reader chooses an entry.
  constructor(scroller, root, entries, select) {
    this.#scroller = scroller;
    this.#root = root;
    this.#select = select;
    this.#top = this.#enter(entries, null);
    this.#current = this.#top[0];
    this.#unfold();
    root.addEventListener('click', (event) => this.#click(event));
    root.addEventListener('keydown', (event) => this.#key(event));
    scroller.addEventListener('scroll', () => requestAnimationFrame(() => this.#render()), {passive: true});
    const observer = new ResizeObserver(() => this.#render());
    for (const part of [scroller, ...scroller.children]) observer.observe(part);
  }

  find(id) { return this.#nodes.get(id)?.entry ?? null; }

  expand(id) { this.#setOpen(this.#nodes.get(id), true); }

  // Marks the entry if it is in this tree, opens the nodes above it, and clears the previous mark.
  mark(id) {
    this.#marked = this.#nodes.get(id) ?? null;
    for (let node = this.#marked?.parent; node; node = node.parent) node.isOpen = true;
    this.#current = this.#marked ?? this.#current;
    this.#unfold();
  }

  #enter(entries, parent) {
    return entries.map((entry, position) => {
      const node = {entry, parent, level: parent ? parent.level + 1 : 1, position, isOpen: false, at: 0};
      this.#nodes.set(entry.id, node);
      node.children = this.#enter(entry.children, node);
      return node;
    });
  }

  // Updates the lines after a node was opened or closed.
  #unfold() {
    this.#lines = [];
    const add = (node) => {
      node.at = this.#lines.push(node) - 1;
      if (node.isOpen) node.children.forEach(add);
    };
    this.#top.forEach(add);
    this.#root.style.setProperty('--lines', this.#lines.length);
    this.#render();
  }

  #setOpen(node, isOpen) {
    if (node.children.length === 0) return;
    node.isOpen = isOpen;
    for (let above = this.#current.parent; above; above = above.parent) {
      if (!above.isOpen) this.#current = above;
    }
    this.#unfold();
  }

  #lineHeight() { return this.#root.clientHeight / this.#lines.length; }

  #render() {
    if (this.#lines.length === 0) return;
    const top = this.#scroller.scrollTop - this.#root.offsetTop;
    const first = Math.floor(top / this.#lineHeight()) - Tree.#LINES_AROUND;
    const end = Math.ceil((top + this.#scroller.clientHeight) / this.#lineHeight()) + Tree.#LINES_AROUND;
    const nodes = this.#lines.slice(Math.max(0, first), Math.max(0, end));
    if (this.#current.at < first) nodes.unshift(this.#current);
    if (this.#current.at >= end) nodes.push(this.#current);
    keepInPage(this.#root, this.#items, nodes, (node) => this.#make(node));
    for (const node of nodes) this.#update(node);
  }

  #make(node) {
    const {entry} = node;
    const item = document.createElement('li');
    item.node = node;
    item.style.setProperty('--level', node.level - 1);
    setAttributes(item, {
      'role': 'treeitem', 'aria-level': node.level, 'aria-posinset': node.position + 1,
      'aria-setsize': (node.parent?.children ?? this.#top).length, 'aria-label': `${entry.label}, ${picturesText(entry.count)}`,
    });
    for (const [name, text] of [['twisty', ''], ['label', entry.label], ['count', numberText.format(entry.count)]]) {
      const part = item.appendChild(document.createElement('span'));
      part.className = name;
      part.textContent = text;
    }
    item.querySelector('.label').title = entry.note || entry.label;
    return item;
  }

  #update(node) {
    const item = this.#items.get(node);
    item.style.setProperty('--at', node.at);
    setAttributes(item, {'aria-selected': node === this.#marked, 'tabindex': node === this.#current ? 0 : -1});
    if (node.children.length > 0) item.setAttribute('aria-expanded', String(node.isOpen));
  }

  #focus(node) {
    if (!node) return;
    this.#current = node;
    const height = this.#lineHeight();
    const top = this.#root.offsetTop + node.at * height;
    const lowest = top + height - this.#scroller.clientHeight;
    this.#scroller.scrollTop = Math.max(lowest, Math.min(top, this.#scroller.scrollTop));
    this.#render();
    this.#items.get(node).focus({preventScroll: true});
  }

  #click(event) {
    const node = event.target.closest('li')?.node;
    if (!node) return;
    if (event.target.classList.contains('twisty')) {
      this.#setOpen(node, !node.isOpen);
    } else {
      this.#focus(node);
      this.#select(node.entry);
    }
  }

  #key(event) {
    if (event.altKey || event.ctrlKey || event.metaKey) return;
    const node = this.#current;
    const next = this.#lines[node.at + 1];
    const moves = {
      ArrowDown: () => this.#focus(next),
      ArrowUp: () => this.#focus(this.#lines[node.at - 1]),
      ArrowRight: () => (node.isOpen ? this.#focus(next) : this.#setOpen(node, true)),
      ArrowLeft: () => (node.isOpen ? this.#setOpen(node, false) : this.#focus(node.parent)),
      Home: () => this.#focus(this.#lines[0]),
      End: () => this.#focus(this.#lines.at(-1)),
      Enter: () => this.#select(node.entry),
      ' ': () => this.#select(node.entry),
    };
    if (!moves[event.key]) return;
    event.preventDefault();
    moves[event.key]();
  }
}
