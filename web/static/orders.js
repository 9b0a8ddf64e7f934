// The form of a purchase order: further lines, what an item brings along, the totals, and the
// questions before it is recorded or left. The page describes its controls in `orderForm`.
'use strict';

(function() {
    const byId = id => document.getElementById(id);
    let changed = false;
    let waiting = null;

    window.addLine = function() {
        const count = byId(orderForm.rowCount);
        const prefix = orderForm.firstRow + Number(count.value);
        const markup = byId('newline').innerHTML.split(orderForm.newRow).join(prefix);
        byId('orderlines').insertAdjacentHTML('beforeend', markup);
        count.value = Number(count.value) + 1;
        byId(prefix + '0').focus();
    };

    // Parts of a line by the last digit of their ids.
    window.offerItem = function(codeInput) {
        const prefix = codeInput.id.slice(0, -1);
        if (!codeInput.value.trim()) return;
        fetch('orderprop?itemcode=' + encodeURIComponent(codeInput.value.trim()))
            .then(answer => answer.text()).then(function(text) {
                const lines = text.split('\n');
                if (lines.length < 4 || /^\s*</.test(text)) return;
                [1, 2, 4, 5].forEach(function(part, i) { byId(prefix + part).value = lines[i]; });
                askTotals();
            }).catch(function() {});
    };

    // The address of the location, while nobody has written another one.
    let offered = null;
    window.offerAddress = function(location) {
        const shipTo = byId(orderForm.shipTo);
        if (shipTo.value !== '' && shipTo.value !== offered) return;
        fetch('orderchangeloc?id=' + encodeURIComponent(location)).then(answer => answer.text())
            .then(function(text) {
                if (/^\s*</.test(text)) return;
                offered = text.replace(/\n$/, '').replace(/\r\n/g, '\n');
                shipTo.value = offered;
            }).catch(function() {});
    };

    // Each row of the answer: what it is, a name or number, an amount.
    function showTotals(text) {
        const box = byId('ordertotals');
        if (/^\s*</.test(text)) return;
        box.textContent = '';
        document.querySelectorAll('#orderlines td.number > span:first-child')
            .forEach(function(cell) { cell.textContent = ''; });
        text.split('\n').forEach(function(line) {
            const [kind, name, amount] = line.split('\t');
            if (kind === 'line') {
                const cell = byId((orderForm.firstRow + Number(name)) + '7');
                if (cell) cell.textContent = amount;
            } else if (kind === 'row') {
                const row = document.createElement('div');
                const label = document.createElement('span');
                const value = document.createElement('b');
                label.textContent = name;
                value.textContent = amount;
                row.append(label, ' ', value);
                box.append(row);
            }
        });
    }
    function askTotals() {
        clearTimeout(waiting);
        waiting = setTimeout(function() {
            const id = document.querySelector('#dialogform input[name=id]');
            const params = GetParams('dialogform') + 'order=' + encodeURIComponent(id.value);
            fetch('ocbtaxtselchange', {
                method: 'POST', body: params,
                headers: {'Content-Type': 'application/x-www-form-urlencoded'}
            }).then(answer => answer.text()).then(showTotals).catch(function() {});
        }, 150);
    }

    window.mayRecord = function() {
        if (document.pressed !== orderForm.record) return true;
        return byId(orderForm.seenReceived).value !== '1' ||
            confirm('Stock has been received for this order, would you like to record it anyway?');
    };

    // Leaving a changed order asks what is to become of it.
    function askBeforeCancel(event) {
        if (!changed || !event.isTrusted) return;
        event.preventDefault();
        const box = document.createElement('dialog');
        box.setAttribute('aria-label', 'Purchase Order');
        const text = document.createElement('p');
        text.textContent = 'Do you want to save this order as a draft?';
        box.append(text);
        const answers = {
            Save: function() { press(orderForm.saveDraft); },
            Discard: function() { press('Cancel'); },
            Cancel: function() {}
        };
        Object.keys(answers).forEach(function(name) {
            const button = document.createElement('button');
            button.type = 'button';
            button.textContent = name;
            button.onclick = function() {
                box.close();
                box.remove();
                answers[name]();
            };
            box.append(button, ' ');
        });
        document.body.append(box);
        box.showModal();
    }
    function press(name) {
        document.pressed = name;
        LSubmitDialog();
    }

    function sameAddress() {
        byId(orderForm.shipTo).disabled = byId(orderForm.sameAddress).checked;
    }

    LAddEventListener(window, 'onload', function() {
        const form = byId('dialogform');
        const note = function() {
            changed = true;
            askTotals();
        };
        form.addEventListener('input', note);
        form.addEventListener('change', note);
        byId(orderForm.sameAddress).addEventListener('change', sameAddress);
        const cancel = Array.from(document.getElementsByName('submit'))
            .find(button => button.value === 'Cancel');
        if (cancel) cancel.addEventListener('click', askBeforeCancel);
        sameAddress();
        askTotals();
    });
})();
