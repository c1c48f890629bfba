"""A time-stamping service on this machine: answers each request as openssl says. time_stamper.py FOLDER: the folder has
tsa.cnf, its certificate and key; the address is written into FOLDER/address."""

import os
import subprocess
import sys
from http.server import BaseHTTPRequestHandler, HTTPServer

folder = sys.argv[1]


class Stamper(BaseHTTPRequestHandler):
    def do_POST(self):
        with open(os.path.join(folder, "query"), "wb") as query:
            query.write(self.rfile.read(int(self.headers["Content-Length"])))
        answer = subprocess.run(
            ["openssl", "ts", "-reply", "-config", "tsa.cnf", "-queryfile", "query"],
            cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
        ).stdout
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.send_header("Content-Length", str(len(answer)))
        self.end_headers()
        self.wfile.write(answer)

    def log_message(self, *arguments):
        pass


server = HTTPServer(("127.0.0.1", 0), Stamper)
with open(os.path.join(folder, "address.new"), "w") as address:
    address.write("http://127.0.0.1:%d/" % server.server_port)
os.rename(os.path.join(folder, "address.new"), os.path.join(folder, "address"))
server.serve_forever()
