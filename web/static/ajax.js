// What every dialog needs: sending its fields in the background and running the script that comes
// back. Shared by pages made on the server, which call these functions by name.
'use strict';

// `name` with its "on", as in 'onload'.
function LAddEventListener(target, name, listener) {
    if (target) target.addEventListener(name.replace(/^on/, ''), listener);
}

// Says something that belongs to no field, above the form.
function LTell(message) {
    let box = document.getElementById('tellTag');
    if (!box) {
        box = document.createElement('div');
        box.id = 'tellTag';
        box.className = 'notice';
        box.setAttribute('role', 'alert');
        const place = document.querySelector('.centerwrapper') || document.body.firstChild;
        place.parentNode.insertBefore(box, place);
    }
    box.textContent = message;
    window.scroll(0, 0);
}

function LForgetTold() {
    const box = document.getElementById('tellTag');
    if (box) box.remove();
}

// Posts `params` ("name=value&...", or FormData) to a page of this server and hands the answer to
// `onAnswer`. Without an answer it says so and calls `onError` or `onTimeout`.
function SimpleAjaxCall(url, params, onAnswer, onError, onTimeout, timeoutMs) {
    const request = new XMLHttpRequest();
    request.open('POST', url, true);
    request.timeout = timeoutMs || 0;
    if (typeof params === 'string') {
        request.setRequestHeader('Content-Type', 'application/x-www-form-urlencoded');
    }
    const failed = function(message, callback) {
        LTell(message);
        if (callback) callback();
    };
    request.onload = function() {
        LForgetTold();
        if (request.status === 200) {
            onAnswer(request.responseText);
        } else {
            failed('The server did not accept this. Please load the page again.', onError);
        }
    };
    request.onerror = function() {
        failed('The server cannot be reached. Please try again.', onError);
    };
    request.ontimeout = function() {
        failed('The server has not answered in time. Please look whether it was done before you ' +
               'try again.', onTimeout);
    };
    request.send(params);
}

function LIsPosted(control) {
    if (!control.name || control.disabled) return false;
    if (control.type === 'checkbox' || control.type === 'radio') return control.checked;
    return !['submit', 'button', 'reset', 'image', 'file', 'fieldset'].includes(control.type);
}

// The fields of a form as "name=value&name=value&": each pair is followed by "&".
function GetParams(formId) {
    let params = '';
    for (const control of document.getElementById(formId).elements) {
        if (!LIsPosted(control)) continue;
        // Lines end as browsers' own forms end them.
        const value = control.value.replace(/\r?\n/g, '\r\n');
        params += encodeURIComponent(control.name) + '=' + encodeURIComponent(value) + '&';
    }
    return params;
}

// Runs the script that a submit was answered with. A page in its place means that nobody is logged
// on any more.
function HandleAjaxJSReturn(answer) {
    if (/^\s*</.test(answer)) {
        window.location = 'logon';
    } else {
        (0, eval)(answer);  // in the page's own scope, not in this function's
    }
}

// The form's onsubmit. Scripts of the page say what is checked and how it is sent.
function LSubmitDialog() {
    const form = document.getElementById('dialogform');
    const buttons = Array.from(document.getElementsByName('submit'));
    if (buttons.some(button => button.disabled)) return false;  // one is on its way
    if (!document.pressed) document.pressed = form.elements.submitdef.value;
    if (document.pressed !== 'Cancel' && !validatedata()) return false;
    // Where files can be sent, postfile.js knows how.
    const sendsFiles = window.LSubmitFiles && document.pressed !== 'Cancel' && LSubmitFiles(form);
    if (!sendsFiles) CmSubmit();
    document.pressed = '';
    return false;
}

// Enter presses the default button of the form, whichever stands first.
LAddEventListener(document, 'onkeydown', function(event) {
    const field = event.target;
    if (event.key !== 'Enter' || event.defaultPrevented || event.isComposing) return;
    if (field.tagName !== 'INPUT' || field.type === 'submit' || field.type === 'button') return;
    if (!field.form || field.form.id !== 'dialogform') return;
    event.preventDefault();
    document.pressed = field.form.elements.submitdef.value;
    if (document.pressed) LSubmitDialog();
});

// For those who may only look: what the form shows cannot be changed and Cancel alone is left to
// press. (The server would save nothing of it either.)
function LDisableEditing() {
    const form = document.getElementById('dialogform');
    const controls = Array.from(form.elements);
    const cancel = controls.find(control => control.type === 'submit' && control.value === 'Cancel');
    for (const control of controls) {
        if (control === cancel || control.type === 'hidden' || control.tagName === 'BUTTON') continue;
        if (control.type === 'submit') {
            if (cancel) control.remove();
        } else if (control.type === 'textarea' || /^(text|password|date|number)$/.test(control.type)) {
            control.readOnly = true;
        } else if (control.name || control.type === 'button') {
            control.disabled = true;
        }
    }
    if (!cancel) return;
    form.elements.submitdef.value = 'Cancel';
    for (const tab of document.querySelectorAll('.navtab')) tab.onclick = null;  // nothing to keep
    const note = document.createElement('p');
    note.className = 'muted';
    note.textContent = 'You may look at this, but not change it.';
    form.before(note);
}

// A tab of a dialog: keeps what was entered so far on the server, then goes to `target`.
function LSaveTab(tabName, target) {
    let params = GetParams('dialogform') + 'tabName=' + encodeURIComponent(tabName);
    if (window.LChosenFiles && LChosenFiles().length > 0) {
        if (!LFilesFit()) return false;
        params = new FormData(document.getElementById('dialogform'));
        params.set('tabName', tabName);
    }
    SimpleAjaxCall('saveItemDialogTab', params, function(answer) {
        HandleAjaxJSReturn(answer);
        if (!answer.trim()) window.location = target;
    }, null, null, typeof params === 'string' ? 60000 : 1200000);
    return false;
}
