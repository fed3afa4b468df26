#!/usr/bin/env bash
# Makes the certificates TLS tests use, in one folder, with openssl:
#   ca.pem            a test certificate authority (VONEL_EXTRA_CA points at it)
#   trusted.pem       signed by it for localhost and 127.0.0.1
#   other-host.pem    signed by it for another host only
#   expired.pem       signed by it, valid only in 2020
#   future.pem        signed by it, valid only from 2090
#   self.pem, self2.pem   two self-signed certificates for localhost
# Each NAME.pem has its key in NAME.key.
#   tools/test-certificates.sh DIR
set -euo pipefail
dir=${1:?folder}
mkdir -p "$dir"
cd "$dir"
quiet() { "$@" >/dev/null 2>&1 || { "$@"; exit 1; }; }

key() { quiet openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out "$1.key"; }

self_signed() {
  key "$1"
  quiet openssl req -x509 -new -key "$1.key" -out "$1.pem" -days 3650 -subj "/CN=localhost/O=Vonel test $1" \
    -addext "subjectAltName=DNS:localhost,IP:127.0.0.1"
}

# NAME SAN STARTDATE ENDDATE: signed by the test CA.
signed() {
  key "$1"
  local name=${2#DNS:}
  quiet openssl req -new -key "$1.key" -out "$1.csr" -subj "/CN=${name%%,*}/O=Vonel test $1"
  printf 'subjectAltName=%s\nbasicConstraints=CA:FALSE\nextendedKeyUsage=serverAuth\n' "$2" >"$1.ext"
  : >index.txt
  cat >ca.cnf <<CNF
[ca]
default_ca = test
[test]
database = index.txt
new_certs_dir = .
serial = serial
default_md = sha256
policy = anything
copy_extensions = none
unique_subject = no
[anything]
commonName = supplied
organizationName = optional
CNF
  [ -f serial ] || echo 01 >serial
  quiet openssl ca -batch -config ca.cnf -cert ca.pem -keyfile ca.key -in "$1.csr" -out "$1.pem" \
    -startdate "$3" -enddate "$4" -extfile "$1.ext" -notext
  rm -f "$1.csr" "$1.ext" ./*.old
}

self_signed ca
rm ca.pem
quiet openssl req -x509 -new -key ca.key -out ca.pem -days 3650 -subj "/CN=Vonel test CA" \
  -addext "basicConstraints=critical,CA:TRUE" -addext "keyUsage=critical,keyCertSign,cRLSign"
signed trusted "DNS:localhost,IP:127.0.0.1" 20200101000000Z 20991231000000Z
signed other-host "DNS:other.example" 20200101000000Z 20991231000000Z
signed expired "DNS:localhost,IP:127.0.0.1" 20200101000000Z 20201231000000Z
signed future "DNS:localhost,IP:127.0.0.1" 20900101000000Z 20991231000000Z
self_signed self
self_signed self2
rm -f index.txt* serial* ca.cnf ./[0-9A-F][0-9A-F].pem
