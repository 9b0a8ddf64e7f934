// Sending files from a form: the answer's script runs, progress is shown, and it can be cancelled.
import assert from 'node:assert/strict';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { Shop, logOn, openWindow } from './harness.mjs';

// A form as upload dialogs have it, posted to the page that keeps what is chosen on a tab. That
// page answers with nothing when it kept all, and with script when it did not.
const FORM = (tabName) => `<html><head><meta charset=utf-8></head><body>
<script src='ajax.js'></script><script src='postfile.js'></script>
<form id=dialogform action='saveItemDialogTab' method=post onsubmit='return LSubmitDialog()'>
<label>Picture <input type=file id=5 name=5></label><input type=hidden name=tabName value='${tabName}'>
<input type=submit name=submit value='  OK  ' onclick='document.pressed=this.value'>
<input type=hidden name=submitdef value='  OK  '></form>
<iframe id=uploadIFrame name=uploadIFrame onload=uploadDone()  height=1 width=1 style='visibility:hidden;'></iframe>
<script>uBrowserID = 4711; uploadMaxBytes = 20000000;
function DisableSubmits(off) { for (const one of document.getElementsByName('submit')) one.disabled = off; }
function validatedata() { return true; }
var uploadForm = document.getElementById('dialogform');var currentAction = uploadForm.getAttribute('action');
uploadForm.setAttribute('action', currentAction + '?uBrowserID='+uBrowserID);</script></body></html>`;

async function send(page, shop, form, size) {
    await page.goto(shop.url + form);
    await page.setInputFiles('[id="5"]', { name: 'bild ä "1".png', mimeType: 'image/png', buffer: Buffer.alloc(size, 7) });
    await page.click('input[name=submit]');
}

const told = (page) => page.innerText('#tellTag');
const isIdle = (page) => page.waitForFunction(() => !uploadRun && !document.getElementsByName('submit')[0].disabled);

async function throttle(page, bytesPerSecond) {
    const client = await page.context().newCDPSession(page);
    await client.send('Network.emulateNetworkConditions',
        { offline: false, latency: 0, downloadThroughput: -1, uploadThroughput: bytesPerSecond });
}

export default async function uploads({ test, browser, executable }) {
    const shop = new Shop(executable);
    try {
        await shop.setUp();
        mkdirSync(join(shop.data, 'Web'), { recursive: true });
        writeFileSync(join(shop.data, 'Web/form.html'), FORM('t'));
        writeFileSync(join(shop.data, 'Web/refused.html'), FORM('a b'));
        const page = await openWindow(browser);
        await logOn(page, shop);
        await test('a file travels through the hidden frame and arrives whole', async () => {
            await send(page, shop, 'form.html', 300000);
            await isIdle(page);
            const [file] = shop.files('Uploads');
            assert.deepEqual(readFileSync(join(shop.data, 'Uploads', file)), Buffer.alloc(300000, 7));
        });
        await test('the script that an upload is answered with runs', async () => {
            await send(page, shop, 'refused.html', 10);
            await page.waitForSelector('#tellTag');
            assert.equal(await told(page), 'What you entered on this tab is too long to be kept.');
        });
        await test('a file that is too large is not sent', async () => {
            await send(page, shop, 'form.html', 20000001);
            assert.match(await told(page), /has 20 MB; at most 20 MB can be sent\. Please choose a smaller file\.$/);
            assert.equal(await page.isDisabled('input[name=submit]'), false);
        });
        await test('progress is shown, and the upload can be cancelled by keyboard', async () => {
            await page.goto(shop.url + 'form.html');
            await throttle(page, 200000);
            await send(page, shop, 'form.html', 3000000);
            await page.waitForFunction(() => document.querySelector('progress')?.value > 0);
            assert.match(await page.innerText('[role=status]'), /^Sent .+ of 3\.0 MB/);
            assert.equal(await page.isDisabled('input[name=submit]'), true);
            await page.focus('text=Cancel upload');
            await page.keyboard.press('Enter');
            await isIdle(page);
            assert.equal(await told(page), 'The upload was cancelled. Nothing was saved.');
            await throttle(page, -1);
            for (let i = 0; i < 50 && shop.files('Uploads').length > 1; ++i) await page.waitForTimeout(100);
            assert.equal(shop.files('Uploads').length, 1, 'what had arrived is deleted');
        });
        await test('the console had nothing to complain about while sending', () => assert.deepEqual(page.complaints, []));
        await page.context().close();
    } finally {
        await shop.tearDown();
    }
}
