// What our own document does for the fragment that stands in it. A fragment has a frame of its own, so that its styles reach
// neither the marker nor the size of the picture.

const emojiFont = '-vantry-emoji';

let frame = null;
let framesToLoad = 0; // of the fragment

// Lays a page out in a frame without scripts, without a way out, and without the focus, which would scroll it and make its caret
// blink. Says whether it is ready.
function show(page, width, height) {
    frame = document.createElement('iframe');
    frame.sandbox = 'allow-same-origin';
    frame.inert = true;
    frame.style = `position:fixed;left:0;top:0;border:0;width:${width}px;height:${height}px`;
    framesToLoad = 0;
    document.body.replaceChildren(frame);
    const inner = frame.contentDocument;
    inner.open();
    inner.write(page);
    inner.close();
    // A frame with another scheme than its document's is not transparent.
    for (const wish of inner.querySelectorAll('meta[name=color-scheme i]'))
        wish.content = 'normal';
    frame.style.colorScheme = getComputedStyle(inner.documentElement).colorScheme;
    // A document that was written, not loaded, does not wait for its frames.
    for (const nested of inner.querySelectorAll('iframe[srcdoc]')) {
        ++framesToLoad;
        nested.addEventListener('load', () => --framesToLoad, { once: true });
    }
    colourEmoji(inner);
    hold(inner);
    return isReady();
}

function isReady() {
    const { readyState, fonts } = frame.contentDocument;
    return readyState === 'complete' && fonts.status === 'loaded' && framesToLoad === 0;
}

function heightOfContent() {
    hold(frame.contentDocument);
    return frame.contentDocument.documentElement.scrollHeight;
}

function mark(colour, height) {
    hold(frame.contentDocument);
    const marker = document.createElement('div');
    marker.style = `position:fixed;left:0;right:0;bottom:0;height:${height}px;background:${colour}`;
    document.body.append(marker);
}

// Puts everything that moves where it is meant to be looked at: an animation at its end, or at its start if it has none.
function hold(page) {
    for (const animation of page.getAnimations()) {
        try {
            animation.finish();
        } catch {
            animation.pause();
            animation.currentTime = 0;
        }
    }
    for (const drawing of page.querySelectorAll('svg')) {
        drawing.pauseAnimations();
        drawing.setCurrentTime(0);
    }
    for (const line of page.querySelectorAll('marquee'))
        line.scrollAmount = 0;
    for (const bar of page.querySelectorAll('progress:indeterminate'))
        bar.value = 0;
}

// Most fonts for text have some emoji too, in black, and the engine prefers the font that was asked for even where a sequence
// demands colour. So the colours' font comes first everywhere, for those characters that the page wants in colour: what is an emoji
// by default or is made one by what follows it, and four that hardly anybody means as text. Not ©, ® and ™: in that font they are
// dark grey, which a dark card swallows.
function colourEmoji(page) {
    const coloured = /(?:[\u2600\u2665\u26A0\u2764]|\p{Emoji_Presentation})(?!\uFE0E)|(?![#*0-9©®™])\p{Emoji}(?=\uFE0F)/gu;
    // Style sheets once more, without the escapes that they may be written with.
    const rules = Array.from(page.styleSheets, sheet => Array.from(sheet.cssRules, rule => rule.cssText).join());
    const found = new Set((page.documentElement.outerHTML + rules).match(coloured));
    if (found.size === 0)
        return;
    const ranges = ['U+200D', 'U+FE0F', 'U+E0020-E007F', ...[...found].map(c => 'U+' + c.codePointAt(0).toString(16))];
    const face = page.createElement('style');
    face.textContent = `@font-face{font-family:${emojiFont};src:local("Noto Color Emoji");unicode-range:${ranges}}`;
    page.head.append(face);
    const elements = [...page.querySelectorAll('*')];
    const families = elements.map(element => getComputedStyle(element).fontFamily);
    elements.forEach((element, i) => element.style?.setProperty('font-family', `${emojiFont},${families[i]}`, 'important'));
}
