// Lists: sorting by a column's title, finding as one types, pages when a list is long. The server
// sends whole tables that can be read without this script; here the rows are taken out of the page
// and only those of one page of the list are put back, so that long lists stay quick.
'use strict';

(function() {
    const kRowsPerPage = 100;
    const kNumber = /^-?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?$/i;

    function element(tag, properties, children) {
        const made = Object.assign(document.createElement(tag), properties);
        made.append(...(children || []));
        return made;
    }

    // Not the hidden attribute: a style of the element's own may overrule that.
    function show(shown, made) {
        made.style.display = shown ? '' : 'none';
    }

    // What a row is sorted by: the cell's own key where it has one, otherwise what it shows.
    function keyOf(row, column) {
        const cell = row.cells[column];
        if (!cell) return '';
        const text = cell.dataset.order !== undefined ? cell.dataset.order : cell.textContent.trim();
        return kNumber.test(text) ? Number(text) : text.toLowerCase();
    }

    // The server's order: numbers by value and before texts, texts ignoring case.
    function compareKeys(left, right) {
        const leftIsNumber = typeof left === 'number';
        if (leftIsNumber !== (typeof right === 'number')) return leftIsNumber ? -1 : 1;
        return left < right ? -1 : left > right ? 1 : 0;
    }

    class LList {
        constructor(wrap) {
            this.wrap = wrap;
            this.table = wrap.querySelector('table.hltbl');
            this.body = this.table.tBodies[0];
            this.titles = Array.from(this.table.tHead.rows[0].cells);
            this.rows = Array.from(this.body.rows);
            this.shown = this.rows;
            this.page = 0;
            // What is entered in a table must stay in the page, or it would not be sent.
            this.isPlain = wrap.dataset.plain !== undefined ||
                           this.body.querySelector('input, select, textarea') !== null;
            this.addSorting();
            if (this.rows.length > 0 && !this.isPlain) this.addTools();
            this.render();
        }

        addSorting() {
            this.titles.forEach((title, column) => {
                if (title.dataset.sortable === undefined || this.rows.length < 2) return;
                const button = element('button', {type: 'button'}, Array.from(title.childNodes));
                title.append(button);
                button.addEventListener('click', () => this.sortBy(column));
            });
        }

        sortBy(column) {
            const title = this.titles[column];
            const ascending = title.getAttribute('aria-sort') !== 'ascending';
            this.titles.forEach(other => other.removeAttribute('aria-sort'));
            title.setAttribute('aria-sort', ascending ? 'ascending' : 'descending');
            const keys = new Map(this.rows.map(row => [row, keyOf(row, column)]));
            const direction = ascending ? 1 : -1;
            this.rows.sort(
                (left, right) => direction * compareKeys(keys.get(left), keys.get(right)));
            this.find();
        }

        addTools() {
            this.search = element('input', {type: 'search', autocomplete: 'off'});
            const label = element('label', {}, ['Find', this.search]);
            const place = element('div', {className: 'grow'}, [label]);
            const tools = element('div', {className: 'toolbar'}, [place]);
            this.count = element('div', {className: 'listcount'});
            this.count.setAttribute('role', 'status');
            this.nothing = element('div', {className: 'empty'});
            this.pager = this.makePager();
            this.table.before(tools, this.count);
            this.table.after(this.nothing, this.pager);
            this.search.addEventListener('input', () => this.findSoon());
            this.search.addEventListener('keydown', event => {
                if (event.key === 'Enter') event.preventDefault();  // no form is meant
            });
            window.addEventListener('beforeprint', () => this.body.replaceChildren(...this.shown));
            window.addEventListener('afterprint', () => this.render());
        }

        makePager() {
            this.back = element('button', {type: 'button', className: 'button'}, ['Previous']);
            this.next = element('button', {type: 'button', className: 'button'}, ['Next']);
            this.where = element('span', {});
            this.back.addEventListener('click', () => this.turn(-1));
            this.next.addEventListener('click', () => this.turn(1));
            const pager =
                element('nav', {className: 'pager'}, [this.back, this.where, this.next]);
            pager.setAttribute('aria-label', 'Pages of the list');
            return pager;
        }

        turn(pages) {
            this.page += pages;
            this.render();
            this.wrap.scrollIntoView({block: 'start'});
        }

        // Typing goes first; in a long list looking through it waits for a pause.
        findSoon() {
            clearTimeout(this.timer);
            this.timer = setTimeout(() => this.find(), this.rows.length > 2000 ? 150 : 0);
        }

        find() {
            const typed = this.search ? this.search.value.trim() : '';
            const words = typed.toLowerCase().split(/\s+/);
            this.shown = this.rows.filter(row => {
                if (row.foundBy === undefined) row.foundBy = row.textContent.toLowerCase();
                return words.every(word => row.foundBy.includes(word));
            });
            this.page = 0;
            if (this.nothing) this.nothing.textContent = 'Nothing here matches "' + typed + '".';
            this.render();
        }

        render() {
            const perPage = this.isPlain ? this.rows.length : kRowsPerPage;
            const first = this.page * perPage;
            const rows = this.shown.slice(first, first + perPage);
            rows.forEach(row => this.finish(row));
            this.body.replaceChildren(...rows);
            if (this.search) this.renderTools(first, rows.length);
        }

        // What a row needs once it is shown. On phones it becomes a card; its cells then say which
        // column they are of.
        finish(row) {
            if (row.isFinished) return;
            row.isFinished = true;
            this.addActions(row);
            if (row.cells.length !== this.titles.length) return;
            this.titles.forEach((title, column) => {
                row.cells[column].dataset.label = title.textContent.trim();
            });
        }

        // The list's links, with the row's arguments: "caption\ntarget\n" for each.
        addActions(row) {
            const cell = row.querySelector('[data-args]');
            if (!cell || !this.wrap.dataset.actions) return;
            const parts = this.wrap.dataset.actions.split('\n');
            const what = row.cells[0].textContent.trim();
            const links = element('span', {className: 'rowactions'});
            for (let at = 0; at + 1 < parts.length; at += 2) {
                const link = element('a', {href: parts[at + 1] + cell.dataset.args}, [parts[at]]);
                link.setAttribute('aria-label', parts[at] + ' ' + what);
                links.append(link, ' ');
            }
            cell.replaceChildren(links);
        }

        renderTools(first, rowCount) {
            const all = this.rows.length;
            const found = this.shown.length;
            const name = this.wrap.dataset.name || 'Rows';
            this.count.textContent = `${name}: ` + (found === all ? all : `${found} of ${all}`);
            show(found === 0, this.nothing);
            show(found > 0, this.table);
            const pages = Math.ceil(found / kRowsPerPage);
            show(pages > 1, this.pager);
            this.back.disabled = this.page === 0;
            this.next.disabled = this.page >= pages - 1;
            this.where.textContent = `${first + 1} to ${first + rowCount} of ${found}`;
        }
    }

    for (const wrap of document.querySelectorAll('.hlwrap:not([data-ready])')) {
        wrap.dataset.ready = '1';
        new LList(wrap);
    }
})();
