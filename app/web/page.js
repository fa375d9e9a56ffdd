// The program's own script in every page it renders: receives new bodies,
// keeps the scroll position, reports check boxes, edits and double clicks.
// Runs in its own world, so scripts of the document never reach the bridge.
(function () {
  'use strict';
  // The list item of a check box: an input inside it, or a task item of
  // the program's Markdown whose box its style sheet draws left of it.
  function checkboxItem(event) {
    var target = event.target;
    if (target.tagName === 'INPUT' && target.type === 'checkbox') return target.closest('li');
    if (target.tagName === 'LI' && event.offsetX < 0 &&
        (target.classList.contains('tl_checkbox') || target.classList.contains('tl_checkbox_done')))
      return target;
    return null;
  }
  // The item's own markup, without its box and the lists inside it.
  function itemHTML(item) {
    var copy = item.cloneNode(true);
    copy.querySelectorAll('input, ul, ol').forEach(function (e) { e.remove(); });
    return copy.innerHTML.trim();
  }
  function occurrence(item) {
    var html = itemHTML(item), index = -1;
    var items = document.querySelectorAll('li');
    for (var i = 0; i < items.length; ++i) {
      var box = items[i].classList.contains('tl_checkbox') ||
          items[i].classList.contains('tl_checkbox_done') ||
          items[i].querySelector('input[type=checkbox]');
      if (items[i] !== item && (!box || itemHTML(items[i]) !== html)) continue;
      ++index;
      if (items[i] === item) return index;
    }
    return -1;
  }
  function htmlUpTo(element) {
    var range = document.createRange();
    range.setStart(document.body, 0);
    range.setEndBefore(element);
    var holder = document.createElement('div');
    holder.appendChild(range.cloneContents());
    return holder.innerHTML;
  }
  new QWebChannel(qt.webChannelTransport, function (channel) {
    var bridge = channel.objects.bridge;
    var scrollTimer = null;
    bridge.bodyPushed.connect(function (html) {
      var y = window.scrollY;
      document.body.innerHTML = html;
      window.scrollTo(0, y);
    });
    // Another document of the program's own: its head and body take the
    // place of the shown ones, with no new load.
    bridge.pagePushed.connect(function (html, y) {
      var doc = new DOMParser().parseFromString(html, 'text/html');
      document.documentElement.replaceChild(document.adoptNode(doc.head), document.head);
      document.documentElement.replaceChild(document.adoptNode(doc.body), document.body);
      window.scrollTo(0, y);
      bridge.pushDone();
    });
    bridge.scrollRequested.connect(function (y) { window.scrollTo(0, y); });
    // The element a reference's anchor names, by id or by name.
    bridge.anchorRequested.connect(function (anchor) {
      var target = document.getElementById(anchor) || document.getElementsByName(anchor)[0];
      // Not flush with the top edge.
      if (target) window.scrollTo(0, target.getBoundingClientRect().top + window.scrollY - 16);
    });
    bridge.textInserted.connect(function (text) {
      if (!document.body.isContentEditable) return;
      document.body.focus();
      document.execCommand('insertText', false, text);
    });
    bridge.htmlInserted.connect(function (html) {
      if (!document.body.isContentEditable) return;
      document.body.focus();
      document.execCommand('insertHTML', false, html);
    });
    bridge.editableChanged.connect(function (editable) {
      document.body.contentEditable = editable ? 'true' : 'false';
    });
    window.addEventListener('scroll', function () {
      clearTimeout(scrollTimer);
      scrollTimer = setTimeout(function () { bridge.scrolled(window.scrollY); }, 100);
    });
    document.addEventListener('click', function (event) {
      var item = checkboxItem(event);
      if (item) bridge.checkboxToggled(itemHTML(item), occurrence(item));
    }, true);
    document.addEventListener('beforeinput', function () {
      bridge.editingBegins(document.body.innerHTML);
    }, true);
    document.addEventListener('input', function () {
      bridge.edited(document.body.innerHTML);
    }, true);
    // The engine moves to a place in the same page without asking the
    // view, so such a link is told here; the view decides what it means.
    document.addEventListener('click', function (event) {
      var link = event.target.closest && event.target.closest('a[href]');
      if (link && link.hash && link.href.split('#')[0] === location.href.split('#')[0])
        bridge.sameDocumentLinkClicked(link.href);
    }, true);
    document.addEventListener('dblclick', function (event) {
      if (document.body.isContentEditable) return;
      var element = event.target.closest('p,li,h1,h2,h3,h4,h5,h6,pre,blockquote,td,th') || event.target;
      bridge.doubleClicked(element.outerHTML, htmlUpTo(element));
    });
    bridge.pageReady();
  });
})();
