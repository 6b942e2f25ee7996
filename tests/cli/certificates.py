"""A certificate authority of a test's own, and a machine that trusts nobody else."""

import ssl
import subprocess

import mounts

SYSTEM = "/etc/ssl/certs"  # where the machine keeps whom it trusts


class Authority:
    """Vouches for servers. Its files stand in `folder`."""

    def __init__(self, folder):
        self.folder = folder
        self.trusted = folder / "trusted"
        self.trusted.mkdir(parents=True)
        self._openssl("req", "-x509", *self._new_key("authority"), "-days", "2", "-subj", "/CN=An authority",
                      "-out", self.trusted / "authority.pem")
        self._openssl("rehash", self.trusted)

    def context(self, address="IP:127.0.0.1", days=2):
        """Of a server that is called `address`, whose certificate holds for `days` from now on; below 0 it has expired."""
        request, certificate = self.folder / "server.csr", self.folder / "server.pem"
        self._openssl("req", *self._new_key("server"), "-subj", "/CN=server", "-addext", f"subjectAltName={address}",
                      "-out", request)
        self._openssl("x509", "-req", "-in", request, "-CA", self.trusted / "authority.pem", "-CAkey",
                      self.folder / "authority.key", "-CAcreateserial", "-CAserial", self.folder / "serial", "-days", days,
                      "-copy_extensions", "copy", "-out", certificate)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, self.folder / "server.key")
        return context

    def trusting(self):
        """What to write before a command so that it runs on a machine that trusts this authority and no other. Skips the
        test where nothing may be mounted."""
        return mounts.prefix(f'mount --bind "$1" {SYSTEM}', self.trusted)

    def _new_key(self, name):
        return "-newkey", "rsa:2048", "-nodes", "-keyout", self.folder / f"{name}.key"

    @staticmethod
    def _openssl(*words):
        subprocess.run(["openssl", *(str(word) for word in words)], check=True, capture_output=True)
