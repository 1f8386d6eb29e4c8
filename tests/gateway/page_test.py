#!/usr/bin/env python3
"""The gateway's page in a real headless browser (chromium through chromedriver's WebDriver
interface): it lists the simulated devices, opens an object, shows its present value, writes a
new one and shows it changed.

    page_test.py GATEWAY_EXE SIM_DEVICE_EXE
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.request
import hashlib

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"


def free_ports():
    base = 44000 + (os.getpid() % 500) * 4
    return base, base + 1, base + 2  # UDP, HTTP, WebDriver


def call(driver, method, path, body=None):
    data = None if body is None else json.dumps(body).encode()
    req = urllib.request.Request(driver + path, data=data, method=method,
                                 headers={"Content-Type": "application/json"})
    with urllib.request.urlopen(req, timeout=30) as r:
        return json.loads(r.read().decode())["value"]


def wait_for(what, check, seconds=15):
    end = time.time() + seconds
    while time.time() < end:
        try:
            result = check()
            if result:
                return result
        except Exception:  # the page is still loading what is checked
            pass
        time.sleep(0.2)
    raise AssertionError("timed out waiting for " + what)


def main(gateway_exe, sim_exe):
    udp, http, wd = free_ports()
    work = tempfile.mkdtemp()
    procs = []
    try:
        for instance, ip in (("101", "127.0.0.2"), ("102", "127.0.0.3")):
            procs.append(subprocess.Popen([sim_exe, "--instance", instance, "--interface", ip,
                                           "--port", str(udp)], stdout=subprocess.DEVNULL))
        token = "page-token"
        config = {"listen": {"port": http}, "bacnet": {"interface": "127.0.0.1", "port": udp,
                                                       "discoverMs": 600},
                  "database": {"sqlite": os.path.join(work, "gw.db")},
                  "tokens": [{"sha256": hashlib.sha256(token.encode()).hexdigest(), "rights": "read-write"}]}
        with open(os.path.join(work, "gw.json"), "w") as f:
            json.dump(config, f)
        procs.append(subprocess.Popen([gateway_exe, "--config", os.path.join(work, "gw.json")],
                                      stdout=subprocess.DEVNULL))
        procs.append(subprocess.Popen(["chromedriver", "--port=%d" % wd], stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL))
        driver = "http://127.0.0.1:%d" % wd
        wait_for("chromedriver", lambda: call(driver, "GET", "/status")["ready"])
        options = {"args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"]}
        if shutil.which("chromium"):
            options["binary"] = shutil.which("chromium")
        session = call(driver, "POST", "/session", {"capabilities": {"alwaysMatch": {
            "browserName": "chrome", "goog:chromeOptions": options}}})["sessionId"]
        s = "/session/" + session

        def find(css):
            return call(driver, "POST", s + "/element", {"using": "css selector", "value": css})[ELEMENT]

        def texts(css):
            found = call(driver, "POST", s + "/elements", {"using": "css selector", "value": css})
            return [call(driver, "GET", s + "/element/" + e[ELEMENT] + "/text") for e in found]

        def click(css):
            call(driver, "POST", s + "/element/" + find(css) + "/click", {})

        try:
            base = "http://127.0.0.1:%d/" % http
            wait_for("the gateway", lambda: urllib.request.urlopen(base, timeout=2).status == 200)
            call(driver, "POST", s + "/url", {"url": base})
            call(driver, "POST", s + "/element/" + find("#token") + "/value", {"text": token})
            click("#use")
            wait_for("both devices listed", lambda: {"101", "102"} <= set(texts("#devices a")))
            click('#devices a[data-name="101"]')
            wait_for("the objects of 101", lambda: "analog-value,1" in texts("#objects a"))
            click('#objects a[data-name="analog-value,1"]')
            wait_for("the present value 21.5", lambda: texts("#value-present-value") == ["21.5"])
            call(driver, "POST", s + "/element/" + find("#newValue") + "/value", {"text": "33.5"})
            click("#write")
            wait_for("the written value shown", lambda: texts("#value-present-value") == ["33.5"])
            if texts("#status") != ["written"]:
                raise AssertionError("status says %s" % texts("#status"))
        finally:
            call(driver, "DELETE", s)
        print("page test: devices listed, object opened, 21.5 shown, 33.5 written and shown")
        return 0
    finally:
        for p in procs:
            p.terminate()
        for p in procs:
            p.wait(timeout=10)
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
