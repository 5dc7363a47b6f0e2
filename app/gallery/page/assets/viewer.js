'use strict';

// The large view of one picture. A modal dialog: the browser keeps the focus inside and closes the dialog on Escape.
class Viewer {
  static #MM_PER_INCH = 25.4;

  #dialog = document.getElementById('viewer');
  #stage = document.getElementById('stage');
  #catalogue;
  #changed;
  #pictures = [];
  #position = 0;

  // Calls changed(picture) for each picture shown, and closed(position) with the position of the last one.
  constructor(catalogue, {changed, closed}) {
    this.#catalogue = catalogue;
    this.#changed = changed;
    this.#dialog.addEventListener('keydown', (event) => this.#key(event));
    this.#dialog.addEventListener('close', () => {
      if (this.#dialog.open) return;  // late event: the next picture is already open
      this.#stage.replaceChildren();
      closed(this.#position);
    });
    document.getElementById('close').addEventListener('click', () => this.#dialog.close());
    document.getElementById('previous').addEventListener('click', () => this.#go(this.#position - 1));
    document.getElementById('next').addEventListener('click', () => this.#go(this.#position + 1));
  }

  get isOpen() { return this.#dialog.open; }

  open(pictures, position) {
    this.#pictures = pictures;
    this.#go(position);
    if (!this.#dialog.open) this.#dialog.showModal();
    this.#dialog.focus();
  }

  close() { this.#dialog.close(); }

  #key(event) {
    if (event.altKey || event.ctrlKey || event.metaKey) return;
    const targets = {
      ArrowLeft: this.#position - 1, ArrowRight: this.#position + 1, Home: 0, End: this.#pictures.length - 1,
    };
    if (!(event.key in targets)) return;
    event.preventDefault();
    this.#go(targets[event.key]);
  }

  #go(position) {
    if (position < 0 || position >= this.#pictures.length) return;
    this.#position = position;
    const picture = this.#pictures[position];
    this.#setEnabled('previous', position > 0);
    this.#setEnabled('next', position < this.#pictures.length - 1);
    this.#write('viewer-position', `${numberText.format(position + 1)} of ${numberText.format(this.#pictures.length)}`);
    this.#write('viewer-name', this.#catalogue.name(picture));
    this.#showFacts(picture);
    this.#showPicture(picture);
    this.#changed(picture);
  }

  // A focused button that is disabled loses the focus, and then the arrow keys do nothing.
  #setEnabled(id, enabled) { document.getElementById(id).setAttribute('aria-disabled', String(!enabled)); }

  #write(id, text) {
    const element = document.getElementById(id);
    element.textContent = text;
    element.closest('dl > div')?.toggleAttribute('hidden', text === '');
  }

  #showFacts(picture) {
    const catalogue = this.#catalogue;
    const [width, height, resolution] = [catalogue.width(picture), catalogue.height(picture), catalogue.resolution(picture)];
    const isKnown = width > 0;
    this.#write('fact-index', catalogue.indexPath(picture).join(' \u203a '));
    this.#write('fact-meaning', catalogue.meaning(picture));
    this.#write('fact-size', isKnown ? `${numberText.format(width)} \u00d7 ${numberText.format(height)} pixels` : 'Unknown');
    this.#write('fact-resolution', resolution > 0 ? `${resolution} dots per inch` : isKnown ? 'No resolution stated' : '');
    this.#write('fact-paper', resolution > 0 && catalogue.isDocument(picture) ? this.#paper(width, height, resolution) : '');
    this.#write('fact-date', catalogue.time(picture));
    document.getElementById('fact-folder').replaceChildren(...breakable(catalogue.folder(picture)));
    const original = document.getElementById('original');
    original.href = catalogue.original(picture);
    original.hidden = catalogue.isMissing(picture);
  }

  #paper(width, height, resolution) {
    const [across, down] = [width, height].map((pixels) => Math.round((pixels / resolution) * Viewer.#MM_PER_INCH));
    return `${across} \u00d7 ${down} mm`;
  }

  // Shows the picture, or the preview of one that browsers cannot show. Until that is loaded, or if it fails, the thumbnail.
  #showPicture(picture) {
    const catalogue = this.#catalogue;
    const thumbnail = catalogue.thumbnail(picture);
    const preview = catalogue.preview(picture);
    const large = preview ?? (catalogue.isMissing(picture) ? null : catalogue.original(picture));
    this.#stage.replaceChildren();
    this.#note(catalogue.isMissing(picture) ? 'The file is missing.' : '');
    if (thumbnail) this.#stage.append(this.#thumbnail(thumbnail, picture));
    if (!large) return;
    const image = this.#image(large, picture);
    image.addEventListener('load', () => {
      if (this.#pictures[this.#position] !== picture) return;
      this.#stage.replaceChildren(image);
      this.#preload();
    });
    image.addEventListener('error', () => {
      if (this.#pictures[this.#position] !== picture) return;
      this.#note(thumbnail ? 'The browser cannot show the picture; this is its thumbnail.' : 'The browser cannot show this picture.');
    });
  }

  #image(address, picture) {
    const image = document.createElement('img');
    image.alt = this.#catalogue.name(picture);
    image.decoding = 'async';
    image.src = address;
    return image;
  }

  // Gives the thumbnail the size of the picture.
  #thumbnail(address, picture) {
    const image = this.#image(address, picture);
    image.className = 'thumbnail';
    image.style.maxWidth = `${this.#catalogue.width(picture)}px`;
    image.style.maxHeight = `${this.#catalogue.height(picture)}px`;
    return image;
  }

  #note(text) { this.#write('viewer-note', text); }

  #preload() {
    const picture = this.#pictures[this.#position + 1];
    if (picture === undefined || this.#catalogue.isMissing(picture)) return;
    new Image().src = this.#catalogue.preview(picture) ?? this.#catalogue.original(picture);
  }
}

// A path as text with possible line breaks after its slashes.
function breakable(path) {
  return path.split(/(?<=\/)/).flatMap((part) => [part, document.createElement('wbr')]);
}
