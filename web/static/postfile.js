// Dialogs that send files. A form with a chosen file goes to the server through a hidden frame, so
// that the page stays; the frame then holds the script that the submit was answered with. Meanwhile
// the server is asked how far it has come.
'use strict';

var uploadMaxBytes = 0;  // set by the page; 0: not known
var uploadRun = null;    // what belongs to the upload that is under way

const kUploadPollMs = 500;

function LChosenFiles() {
    const inputs = document.querySelectorAll('#dialogform input[type=file]');
    return Array.from(inputs).flatMap(input => input.disabled ? [] : Array.from(input.files));
}

function LReadableSize(bytes) {
    return bytes >= 1e6 ? (bytes / 1e6).toFixed(bytes < 1e7 ? 1 : 0) + ' MB'
                        : Math.ceil(bytes / 1000) + ' KB';
}

// False, and said why, when the server would not take the chosen files.
function LFilesFit() {
    const files = LChosenFiles();
    const total = files.reduce((sum, file) => sum + file.size, 0);
    if (!uploadMaxBytes || total <= uploadMaxBytes) return true;
    LTell((files.length > 1 ? 'The chosen files have ' : `"${files[0].name}" has `) +
          `${LReadableSize(total)}; at most ${LReadableSize(uploadMaxBytes)} can be sent. ` +
          'Please choose a smaller file.');
    return false;
}

// The line below the form that shows how far the upload has come.
function LShowProgress() {
    const box = document.createElement('div');
    box.className = 'notice';
    box.setAttribute('role', 'status');
    const text = document.createElement('p');
    text.textContent = 'Sending the file…';
    const bar = document.createElement('progress');
    bar.setAttribute('aria-label', 'Upload');
    const cancel = document.createElement('input');
    cancel.type = 'button';
    cancel.value = 'Cancel upload';
    cancel.addEventListener('click', cancelUpload);
    box.append(text, bar, document.createElement('br'), cancel);
    document.getElementById('dialogform').after(box);
    return {box, text, bar};
}

function LPollProgress(run) {
    run.timer = setTimeout(async () => {
        try {
            const answer = await fetch('uploadProgress?uBrowserID=' + uBrowserID);
            const {bytesRead, totalBytes} = await answer.json();
            if (run !== uploadRun) return;
            if (totalBytes > 0) {
                run.bar.max = totalBytes;
                run.bar.value = bytesRead;
                run.text.textContent =
                    `Sent ${LReadableSize(bytesRead)} of ${LReadableSize(totalBytes)}`;
            }
        } catch {
            // The frame will tell whether the server is gone.
        }
        if (run === uploadRun) LPollProgress(run);
    }, kUploadPollMs);
}

function LEndUpload() {
    if (!uploadRun) return;
    clearTimeout(uploadRun.timer);
    uploadRun.box.remove();
    uploadRun.pressed.remove();
    uploadRun = null;
}

// Called by the form's submit. False when there is no file to send: the form then goes the usual
// way.
function LSubmitFiles(form) {
    if (LChosenFiles().length === 0) return false;
    if (!LFilesFit()) return true;
    LForgetTold();
    window.onbeforeunload = null;
    const pressed = document.createElement('input');
    pressed.type = 'hidden';
    pressed.name = 'submit';
    pressed.value = document.pressed;
    form.append(pressed);
    form.enctype = 'multipart/form-data';
    form.target = 'uploadIFrame';
    uploadRun = {pressed, ...LShowProgress()};
    HTMLFormElement.prototype.submit.call(form);  // a button of that name hides the form's own
    DisableSubmits(true);
    LPollProgress(uploadRun);
    return true;
}

// The hidden frame has been loaded: with nothing at first, with the answer after a submit.
function uploadDone() {
    if (!uploadRun) return;
    let answer = '';
    try {
        answer = document.getElementById('uploadIFrame').contentDocument.body.textContent;
    } catch {
        // The browser's own error page, which no script may read.
    }
    LEndUpload();
    if (answer.trim()) {
        HandleAjaxJSReturn(answer);
    } else {
        DisableSubmits(false);
        LTell('The server did not accept this. Please check the file and try again.');
    }
}

// Stops the upload; nothing is saved.
function cancelUpload() {
    if (!uploadRun) return;
    LEndUpload();
    document.getElementById('uploadIFrame').src = 'about:blank';
    DisableSubmits(false);
    LTell('The upload was cancelled. Nothing was saved.');
}
