// A shop of its own for one run: a fresh home, the installer, the service, a browser.
import { execFileSync, spawn } from 'node:child_process';
import { existsSync, mkdtempSync, readdirSync, readFileSync, rmSync } from 'node:fs';
import { createServer } from 'node:net';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { chromium } from 'playwright-core';

export const EMAIL = 'owner@example.com';
export const PASSWORD = 'correct horse';

async function freePort() {
    return new Promise((resolve) => {
        const server = createServer().listen(0, '127.0.0.1', () => {
            const { port } = server.address();
            server.close(() => resolve(port));
        });
    });
}

export class Shop {
    constructor(executable) {
        this.executable = executable;
        this.home = mkdtempSync(join(tmpdir(), 'quillmarsh-browser-'));
        this.log = '';
        this.env = {
            PATH: process.env.PATH, LANG: 'en_US.UTF-8', TZ: 'UTC', HOME: this.home,
            XDG_DATA_HOME: join(this.home, 'data'), XDG_CONFIG_HOME: join(this.home, 'config'),
        };
        this.data = join(this.home, 'data/Quillmarsh/Shared');
    }

    async setUp(...options) {
        this.port = await freePort();
        this.url = `http://127.0.0.1:${this.port}/`;
        this.install('--business', 'Test Shop', '--admin', EMAIL, '--password-stdin',
            '--port', String(this.port), '--web', 'on', ...options);
        await this.start();
    }

    install(...options) {
        return execFileSync(this.executable, ['-installer', ...options],
            { env: this.env, input: PASSWORD + '\n', encoding: 'utf8' });
    }

    async start() {
        this.service = spawn(this.executable, ['-service'], { env: this.env });
        this.service.stderr.on('data', (text) => { this.log += text; });
        this.ended = new Promise((resolve) => this.service.on('exit',
            (code, signal) => resolve(signal || code)));
        for (let i = 0; i < 200; ++i) {
            try {
                await fetch(this.url + 's.css');
                return;
            } catch {
                await new Promise((resolve) => setTimeout(resolve, 50));
            }
        }
        throw new Error('the service does not answer:\n' + this.log);
    }

    // Resolves to the exit status, or the signal's name.
    async stop() {
        this.service.kill('SIGTERM');
        return this.ended;
    }

    async tearDown() {
        if (this.service && this.service.exitCode === null) await this.stop();
        rmSync(this.home, { recursive: true, force: true });
    }

    file(name) { return readFileSync(join(this.data, name), 'utf8'); }
    files(folder) { return existsSync(join(this.data, folder)) ? readdirSync(join(this.data, folder)) : []; }
    // For tests that count orders: without those of the sample, numbered from the start.
    forgetOrders() {
        for (const list of ['Orders', 'OrdersDrafts', 'OrdersRecurring']) {
            for (const name of this.files(list)) rmSync(join(this.data, list, name));
        }
        rmSync(join(this.data, 'Misc/Order.dat'));
    }
    // The fields of a record file.
    record(name) { return Object.fromEntries(new URLSearchParams(this.file(name))); }
}

export async function openBrowser() {
    return chromium.launch({
        executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
        args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
            '--disable-background-networking', '--disable-component-update', '--disable-sync'],
    });
}

// A window that gathers what the console complains about.
export async function openWindow(browser, width = 1280, height = 900) {
    const context = await browser.newContext({ viewport: { width, height }, locale: 'en-US' });
    const page = await context.newPage();
    page.complaints = [];
    page.on('console', (message) => {
        if (message.type() === 'error') page.complaints.push(`${page.url()}: ${message.text()}`);
    });
    page.on('pageerror', (error) => page.complaints.push(`${page.url()}: ${error.message}`));
    page.setDefaultTimeout(10000);
    return page;
}

export const control = (id) => `[id="${id}"]`;

export async function pressOk(page) {
    await page.click('input[name=submit][value="  OK  "]');
}

// Presses OK and waits until the dialog has led on to `target`.
export async function pressOkTo(page, target) {
    await Promise.all([page.waitForURL((url) => url.pathname === '/' + target), pressOk(page)]);
    await page.waitForLoadState();
}

// The text of the error row and the id of the control in the row below it.
export async function fieldError(page) {
    await page.waitForSelector('#invalidTag');
    return page.evaluate(() => {
        const row = document.getElementById('invalidTag').closest('tr');
        const field = row.nextElementSibling.querySelector('input:not([type=hidden]),select,textarea');
        return { message: row.innerText.trim(), control: Number(field.id), focused: document.activeElement === field };
    });
}

export async function logOn(page, shop) {
    await page.goto(shop.url + 'logon');
    await page.fill(control(101), EMAIL);
    await page.fill(control(102), PASSWORD);
    await pressOkTo(page, 'main');
}

// The rows of the list on the page as arrays of texts.
export async function listRows(page) {
    await page.waitForSelector('table.hltbl');
    return page.$$eval('table.hltbl tbody tr', (rows) => rows.map(
        (row) => [...row.cells].map((cell) => cell.innerText.trim())));
}
