#!/usr/bin/env python3
"""Prepares a home with a shop of many items, to measure the web server on.

web_shop.py EXECUTABLE HOME --items N --port P [--sessions S]

HOME must not exist. Each item has 25 fields and lies at two locations. S further session files are made. Prints the
environment that the service needs and the cookie of a signed-in administrator, as lines for a shell.
"""
import argparse, os, subprocess, sys, urllib.parse

FIELDS = ["Barcode", "CustomField1", "CustomField2", "Notes", "WebSite", "SupplierRef", "Bin", "Brand", "Colour", "Size", "Weight"]


def item(number):
    """A record of about 600 bytes, as the item dialog would store it."""
    quantity, warn, ideal = number % 97, 5 + number % 11, 30 + number % 40
    places = "".join('"%d/%d.00/%d.00/%d.00",' % (place, quantity + place, ideal, warn) for place in (1, 2))
    fields = {"ID": number, "Name": "ITEM-%06d" % number, "Description": "Hex bolt M%d x %d, zinc plated, box of %d" % (number % 20, number % 300, number % 9),
              "Category": 1 + number % 10, "Value": 100 + number % 900, "Price": 250 + number % 2000, "Digits": 2, "Measure": "each", "Tax": "Default",
              "Supplier": 1 + number % 5, "LocationsAndQuantities": places, "Quantity": "%.6f" % (2 * quantity + 3), "CheckWaringEmail": 1}
    fields.update({name: "%s of item %d" % (name.lower(), number) for name in FIELDS})
    return "&".join("%s=%s" % (name, urllib.parse.quote(str(value), safe="!-._~")) for name, value in fields.items())


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w") as f:
        f.write(text)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("executable")
    parser.add_argument("home")
    parser.add_argument("--items", type=int, default=10000)
    parser.add_argument("--port", type=int, default=1097)
    parser.add_argument("--sessions", type=int, default=0)
    args = parser.parse_args()
    if os.path.exists(args.home):
        sys.exit(args.home + " is there already")
    os.makedirs(args.home)
    home = os.path.abspath(args.home)
    env = dict(os.environ, HOME=home, XDG_DATA_HOME=home + "/data", XDG_CONFIG_HOME=home + "/config")
    subprocess.run([args.executable, "-installer", "--business", "Measured", "--admin", "owner@example.com", "--password-stdin",
                    "--port", str(args.port), "--web", "on"], env=env, input=b"correct horse\n", stdout=subprocess.DEVNULL, check=True)
    shared = home + "/data/Quillmarsh/Shared"
    for number, name in ((1, "Main"), (2, "Stockroom")):
        write("%s/Locations/%d.dat" % (shared, number), "ID=%d&Name=%s" % (number, name))
    for number in range(1, 11):
        write("%s/Categories/%d.dat" % (shared, number), "ID=%d&Name=Category%%20%d" % (number, number))
    for number in range(1, 6):
        write("%s/Suppliers/%d.dat" % (shared, number), "ID=%d&Name=Supplier%%20%d" % (number, number))
    for number in range(1, args.items + 1):
        write("%s/Items/%d.dat" % (shared, number), item(number))
    session = "user=owner%40example.com&profile=" + urllib.parse.quote(shared, safe="!-._~")
    for number in range(args.sessions + 1):
        write("%s/SessionData/smeasured%d.sess" % (shared, number), session)
    print("export HOME=%s XDG_DATA_HOME=%s/data XDG_CONFIG_HOME=%s/config" % (home, home, home))
    print("cookie='quillmarsh_sess=smeasured0'")
    print("items='%s/Items'" % shared)


if __name__ == "__main__":
    main()
