'use strict';

// The pictures as tiles. The document holds only the tiles in view, a few rows around them, and the focused tile. Row n lies
// at n times the row height. If all rows together exceed the tallest box of the browser, the scroll bar is stretched: its
// position is scaled to the height of all rows.
class Grid {
  static #TALLEST = 15e6;  // pixels; Firefox stops at 17.8 million, Chromium at 33.5
  static #ROWS_AROUND = 3;
  static #SMALLEST = 9.75;  // rem: width of a tile
  static #GAP = 1;
  static #CAPTION = 2.875;

  #scroller;
  #list;
  #catalogue;
  #open;
  #template = document.getElementById('tile').content.firstElementChild;
  #pictures = [];
  #tiles = new Map();  // by position
  #active = 0;         // position of the tile that Tab focuses
  #columns = 1;
  #tileWidth = 0;      // pixels, like the fields below
  #gap = 0;
  #rowHeight = 1;
  #top = 0;            // from the first row to the top of the view
  #lowest = 0;         // the greatest #top
  #stretch = 1;        // pixels of rows for one pixel of the scroll bar
  #scrolledTo = 0;

  // Shows the tiles in `list`, which `scroller` scrolls. Calls open(position) when the reader opens a picture.
  constructor(scroller, list, catalogue, open) {
    this.#scroller = scroller;
    this.#list = list;
    this.#catalogue = catalogue;
    this.#open = open;
    scroller.addEventListener('scroll', () => requestAnimationFrame(() => this.#follow()), {passive: true});
    list.addEventListener('click', (event) => this.#click(event));
    list.addEventListener('keydown', (event) => this.#key(event));
    // With a stretched scroll bar the browser cannot scroll to the tile that Tab focuses.
    list.addEventListener('focusin', (event) => this.#reveal(event.target.position));
    list.addEventListener('error', (event) => event.target.remove(), true);
    new ResizeObserver(() => this.#resize()).observe(scroller);
  }

  // Shows these pictures, scrolled to the first.
  show(pictures) {
    this.#pictures = pictures;
    this.#active = 0;
    this.#clear();
    this.#measure();
    this.#moveTo(0);
  }

  // Focuses the tile at the position and scrolls it into view.
  focus(position) {
    this.#active = position;
    this.#render();
    this.#reveal(position);
    this.#tiles.get(position)?.focus({preventScroll: true});
  }

  focusActive() {
    if (this.#pictures.length > 0) this.focus(this.#active);
  }

  #clear() {
    this.#tiles.clear();
    this.#list.replaceChildren();
  }

  #measure() {
    const rem = parseFloat(getComputedStyle(document.documentElement).fontSize);
    const width = this.#list.clientWidth;
    this.#gap = Grid.#GAP * rem;
    this.#columns = Math.max(2, Math.floor((width + this.#gap) / (Grid.#SMALLEST * rem + this.#gap)));
    this.#tileWidth = (width - (this.#columns - 1) * this.#gap) / this.#columns;
    this.#rowHeight = Math.round(this.#tileWidth + (Grid.#CAPTION + Grid.#GAP) * rem);
    const rows = Math.ceil(this.#pictures.length / this.#columns);
    const height = rows * this.#rowHeight;
    const box = Math.min(height, Grid.#TALLEST);
    this.#list.style.height = `${box}px`;
    const lowest = this.#scroller.scrollHeight - this.#viewHeight;  // of scrollTop
    this.#lowest = lowest + height - box;
    this.#stretch = box < height ? this.#lowest / lowest : 1;
    this.#scroller.onwheel = box < height ? (event) => this.#wheel(event) : null;  // else the browser scrolls
    this.#list.style.setProperty('--tile-width', `${this.#tileWidth}px`);
  }

  get #viewHeight() { return this.#scroller.clientHeight; }

  // Keeps the first visible row in place.
  #resize() {
    const position = Math.floor(this.#top / this.#rowHeight) * this.#columns;
    const within = (this.#top % this.#rowHeight) / this.#rowHeight;
    this.#measure();
    this.#moveTo((Math.floor(position / this.#columns) + within) * this.#rowHeight);
  }

  #moveTo(top) {
    this.#top = Math.max(0, Math.min(top, this.#lowest));
    this.#scroller.scrollTop = this.#top / this.#stretch;
    this.#scrolledTo = this.#scroller.scrollTop;
    this.#render();
  }

  // Applies the position of the scroll bar.
  #follow() {
    if (this.#scroller.scrollTop === this.#scrolledTo) return;
    this.#scrolledTo = this.#scroller.scrollTop;
    this.#top = this.#scrolledTo * this.#stretch;
    this.#render();
  }

  // With a stretched scroll bar one notch of the wheel would scroll by many rows.
  #wheel(event) {
    if (event.ctrlKey) return;  // zooms
    event.preventDefault();
    const unit = [1, 40, this.#viewHeight][event.deltaMode];
    this.#moveTo(this.#top + event.deltaY * unit);
  }

  #positionsInView() {
    const firstRow = Math.max(0, Math.floor(this.#top / this.#rowHeight) - Grid.#ROWS_AROUND);
    const lastRow = Math.ceil((this.#top + this.#viewHeight) / this.#rowHeight) + Grid.#ROWS_AROUND;
    const first = firstRow * this.#columns;
    const last = Math.min(this.#pictures.length, lastRow * this.#columns) - 1;
    const positions = Array.from({length: Math.max(0, last - first + 1)}, (_, at) => first + at);
    if (this.#active < first) positions.unshift(this.#active);
    if (this.#active > last && this.#active < this.#pictures.length) positions.push(this.#active);
    return positions;
  }

  #render() {
    keepInPage(this.#list, this.#tiles, this.#positionsInView(), (position) => this.#make(position));
    for (const tile of this.#tiles.values()) this.#place(tile);
  }

  #place(tile) {
    const isActive = tile.position === this.#active;
    setAttributes(tile, {'aria-selected': isActive, 'tabindex': isActive ? 0 : -1});
    const x = (tile.position % this.#columns) * (this.#tileWidth + this.#gap);
    const row = Math.floor(tile.position / this.#columns);
    const y = row * this.#rowHeight - this.#top + this.#top / this.#stretch;
    tile.style.transform = `translate(${x}px, ${y}px)`;
  }

  #make(position) {
    const picture = this.#pictures[position];
    const catalogue = this.#catalogue;
    const tile = this.#template.cloneNode(true);
    tile.position = position;
    const name = tile.querySelector('.name');
    name.textContent = name.title = catalogue.name(picture);
    tile.querySelector('.date').textContent = catalogue.day(picture);
    tile.classList.toggle('document', catalogue.isDocument(picture));
    tile.classList.toggle('missing', catalogue.isMissing(picture));
    setAttributes(tile, {
      'aria-setsize': this.#pictures.length, 'aria-posinset': position + 1, 'aria-label': this.#label(picture),
    });
    const thumbnail = catalogue.thumbnail(picture);
    if (thumbnail) tile.querySelector('.frame').append(thumbnailImage(thumbnail));
    return tile;
  }

  #label(picture) {
    const parts = [this.#catalogue.name(picture), this.#catalogue.day(picture)];
    if (this.#catalogue.isMissing(picture)) parts.push('missing');
    if (!this.#catalogue.thumbnail(picture)) parts.push('no thumbnail');
    return parts.filter((part) => part !== '').join(', ');
  }

  #reveal(position) {
    const top = Math.floor(position / this.#columns) * this.#rowHeight;
    if (top < this.#top) {
      this.#moveTo(top);
    } else if (top + this.#rowHeight > this.#top + this.#viewHeight) {
      this.#moveTo(top + this.#rowHeight + this.#list.offsetTop - this.#viewHeight);
    }
  }

  #click(event) {
    const tile = event.target.closest('.tile');
    if (!tile) return;
    this.focus(tile.position);
    this.#open(tile.position);
  }

  #key(event) {
    if (event.altKey || event.metaKey || this.#pictures.length === 0) return;
    const page = Math.max(1, Math.floor(this.#viewHeight / this.#rowHeight)) * this.#columns;
    const last = this.#pictures.length - 1;
    const column = this.#active % this.#columns;
    const steps = {
      ArrowLeft: this.#active - 1, ArrowRight: this.#active + 1,
      ArrowUp: this.#active - this.#columns, ArrowDown: this.#active + this.#columns,
      PageUp: this.#active - page, PageDown: this.#active + page, Home: 0, End: last,
    };
    if (event.key === 'Enter' || event.key === ' ') {
      event.preventDefault();
      this.#open(this.#active);
    } else if (event.key in steps) {
      event.preventDefault();
      this.focus(this.#within(steps[event.key], event.key, column, last));
    }
  }

  // Up in the first row and Down in the last row do nothing. Page keys stop at the first and the last row of the column.
  #within(position, key, column, last) {
    if (position >= 0 && position <= last) return position;
    if (key === 'PageUp') return column;
    if (key === 'PageDown') return last;
    if (key === 'ArrowDown' && Math.floor(this.#active / this.#columns) < Math.floor(last / this.#columns)) return last;
    return this.#active;
  }
}

function thumbnailImage(address) {
  const image = document.createElement('img');
  image.alt = '';
  image.loading = 'lazy';
  image.decoding = 'async';
  image.src = address;
  return image;
}
