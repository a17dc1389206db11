"""A PostgreSQL server of one's own, in a private folder, reached by a socket there alone."""
import glob
import os
import pathlib
import pwd
import shutil
import subprocess
import tempfile


def programs():
    found = sorted(glob.glob("/usr/lib/postgresql/*/bin/initdb"))
    return pathlib.Path(found[-1]).parent if found else pathlib.Path("/usr/bin")


class Postgres:
    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="pavonel-pg.", dir="/tmp"))
        self.folder.chmod(0o755)
        self.user = []
        if os.geteuid() == 0:  # it refuses to run as root
            postgres = pwd.getpwnam("postgres")
            os.chown(self.folder, postgres.pw_uid, postgres.pw_gid)
            self.user = ["setpriv", "--reuid=postgres", "--regid=postgres", "--clear-groups"]
        self.data = self.folder / "data"
        self.run("initdb", "--pgdata", self.data, "--username=relay", "--auth=trust", "--no-sync", "--no-locale",
                 "--encoding=UTF8")
        self.start()
        self.database = f"postgresql://relay@/postgres?host={self.folder}"

    def run(self, program, *arguments):
        subprocess.run([*self.user, programs() / program, *arguments], check=True, cwd=self.folder,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL if program == "initdb" else None)

    def start(self):
        options = f"-c listen_addresses='' -c unix_socket_directories={self.folder} -c max_connections=50"
        self.run("pg_ctl", "--pgdata", self.data, "--log", self.folder / "log", "--options", options, "--wait", "start")

    def stop(self):
        self.run("pg_ctl", "--pgdata", self.data, "--mode=immediate", "--wait", "stop")

    def close(self):
        self.stop()
        shutil.rmtree(self.folder, ignore_errors=True)
