"""Starts three cameras that listen to the discovery group of this (private) network and counts the
endpoints that answer one multicast probe. Usage: multicast_probe.py CAMSIM"""

import re
import socket
import subprocess
import sys
import time

PROBE = """<e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope"
 xmlns:w="http://schemas.xmlsoap.org/ws/2004/08/addressing"
 xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery"><e:Header>
 <w:MessageID>uuid:1</w:MessageID></e:Header><e:Body><d:Probe/></e:Body></e:Envelope>"""

cameras = subprocess.Popen(
    [sys.argv[1], "--count", "3", "--multicast", "--interface", "lo", "--exit-with-stdin"],
    stdin=subprocess.PIPE, stdout=subprocess.PIPE)
for _ in range(3):
    if not cameras.stdout.readline():
        sys.exit("the cameras did not start")

asker = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
asker.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF, socket.inet_aton("127.0.0.1"))
asker.settimeout(1)
found = set()
deadline = time.monotonic() + 20
while len(found) < 3 and time.monotonic() < deadline:
    asker.sendto(PROBE.encode(), ("239.255.255.250", 3702))
    try:
        while len(found) < 3:
            answer = asker.recv(65536).decode()
            found.add(re.search("urn:uuid:[0-9a-f-]{36}", answer).group())
    except socket.timeout:
        pass
cameras.stdin.close()
cameras.wait(20)
print(len(found), "cameras")
