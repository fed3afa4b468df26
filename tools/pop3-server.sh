#!/usr/bin/env bash
# Starts a real Dovecot POP3 server for tests, on 127.0.0.1, on a free port,
# with its whole configuration, state and mailbox in one folder.
#   tools/pop3-server.sh start DIR USER PASSWORD   prints the port; the mailbox is DIR/mail/USER/Maildir
#   tools/pop3-server.sh stop DIR                  stops the server by its own process id
# With POP3_TLS_CERT and POP3_TLS_KEY (PEM files) set, the server also offers
# STLS on that port and listens for TLS from the first byte on a second one,
# written to DIR/pop3s-port.
set -euo pipefail
command=${1:?start or stop}
dir=${2:?folder}

free_port() {
  python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1]); s.close()'
}

case "$command" in
start)
  user=${3:?user}
  password=${4:?password}
  mkdir -p "$dir/run" "$dir/mail/$user/Maildir/new" "$dir/mail/$user/Maildir/cur" "$dir/mail/$user/Maildir/tmp"
  dir=$(cd "$dir" && pwd)
  # Dovecot won't run its login and internal processes as root; as root
  # they take Debian's own service users, who must be able to enter the folder.
  me=$(id -un)
  group=$(id -gn)
  login_user=$me
  if [ "$(id -u)" -eq 0 ]; then
    me=dovecot
    group=dovecot
    login_user=dovenull
    chmod 755 "$dir" "$dir/run"
    parent=$(dirname "$dir")
    while [ "$parent" != / ]; do chmod o+x "$parent" 2>/dev/null || true; parent=$(dirname "$parent"); done
  fi
  uid=$(id -u "$me")
  gid=$(id -g "$me")
  # The test fills the mailbox as itself; the server's mail user must be able to move and delete in it.
  [ "$(id -u)" -ne 0 ] || chmod -R 777 "$dir/mail"
  echo "$user:{PLAIN}$password:$uid:$gid::$dir/mail/$user" >"$dir/passwd"
  port=$(free_port)
  ssl=no
  tls_listener=
  rm -f "$dir/pop3s-port"
  if [ -n "${POP3_TLS_CERT:-}" ]; then
    ssl="yes
ssl_cert = <$POP3_TLS_CERT
ssl_key = <$POP3_TLS_KEY
ssl_min_protocol = TLSv1.2"
    tls_port=$(free_port)
    tls_listener="inet_listener pop3s {
    address = 127.0.0.1
    port = $tls_port
    ssl = yes
  }"
    echo "$tls_port" >"$dir/pop3s-port"
  fi
  cat >"$dir/dovecot.conf" <<CONF
base_dir = $dir/run
state_dir = $dir/run
log_path = $dir/dovecot.log
info_log_path = $dir/dovecot.log
protocols = pop3
listen = 127.0.0.1
ssl = $ssl
disable_plaintext_auth = no
auth_mechanisms = plain
default_internal_user = $me
default_internal_group = $group
default_login_user = $login_user
first_valid_uid = 0
mail_location = maildir:~/Maildir
pop3_uidl_format = %f
passdb {
  driver = passwd-file
  args = $dir/passwd
}
userdb {
  driver = passwd-file
  args = $dir/passwd
}
service pop3-login {
  inet_listener pop3 {
    address = 127.0.0.1
    port = $port
  }
  $tls_listener
  chroot =
}
service anvil {
  chroot =
}
service imap-login {
  chroot =
}
CONF
  dovecot -c "$dir/dovecot.conf"
  for _ in $(seq 1 50); do
    if python3 -c "import socket,sys; socket.create_connection(('127.0.0.1', $port), 0.2)" 2>/dev/null; then
      echo "$port"
      exit 0
    fi
    sleep 0.1
  done
  echo "dovecot did not start; see $dir/dovecot.log" >&2
  exit 1
  ;;
stop)
  pid_file="$dir/run/master.pid"
  [ -f "$pid_file" ] || exit 0
  pid=$(cat "$pid_file")
  kill "$pid" 2>/dev/null || true
  for _ in $(seq 1 50); do
    kill -0 "$pid" 2>/dev/null || exit 0
    sleep 0.1
  done
  kill -9 "$pid" 2>/dev/null || true
  ;;
*)
  echo "usage: $0 start DIR USER PASSWORD | stop DIR" >&2
  exit 2
  ;;
esac
