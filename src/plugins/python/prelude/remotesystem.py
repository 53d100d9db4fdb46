import os as _os

class RemoteSystem:
    """Files and programs of another machine, by SSH.

    Without arguments it is the default system: the one that the settings name, else this machine.
    Close it, or use it in a `with` statement; at the end of the test case it is closed anyway.
    What can't be done raises tamrix.Error."""

    def __init__(self, host=None, port=None):
        self._handle = None
        if host is None and port is None:
            self._handle = _tamrix_connect_to_remote_system()
        else:
            self._handle = _tamrix_connect_to_remote_system(
                "" if host is None else host, -1 if port is None else port)

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        if self._handle is not None:
            self.close()

    def _open(self):
        if self._handle is None:
            raise Error("The remote system is closed")
        return self._handle

    def close(self):
        """Ends the connection."""
        handle = self._open()
        self._handle = None
        _tamrix_close_remote_system_connection(handle)

    def getEnvironmentVariable(self, name):
        """The value of an environment variable, empty when it is not set."""
        return _tamrix_remote_get_environment_variable(self._open(), name)

    def getOSName(self):
        """The operating system: "Linux", "Darwin"..."""
        return _tamrix_remote_get_os_name(self._open())

    def exists(self, path):
        """Whether there is a file, folder or link under the path."""
        return _tamrix_remote_path_exists(self._open(), _os.fspath(path))

    def rename(self, oldPath, newPath):
        """Renames or moves; fails when there is something under the new path."""
        return _tamrix_remote_rename_path(self._open(), _os.fspath(oldPath), _os.fspath(newPath))

    def createPath(self, path, recursive=False):
        """Makes a folder; recursive=True those in front of it, too."""
        return _tamrix_remote_create_path(self._open(), _os.fspath(path), bool(recursive))

    def deletePath(self, path, recursive=False):
        """Removes a file or an empty folder; recursive=True a folder with all that is in it."""
        return _tamrix_remote_delete_path(self._open(), _os.fspath(path), bool(recursive))

    def createFile(self, path, content="", encoding="UTF-8"):
        """Writes a text to a file, in place of one that is there."""
        return _tamrix_remote_create_file(self._open(), _os.fspath(path), content, encoding)

    def deleteFile(self, path):
        """Removes a file."""
        return _tamrix_remote_delete_file(self._open(), _os.fspath(path))

    def copy(self, sourcePath, targetPath):
        """Copies a file or folder on the system itself."""
        return _tamrix_remote_copy_path(self._open(), _os.fspath(sourcePath), _os.fspath(targetPath))

    def upload(self, localPath, remotePath):
        """Copies a file of this machine to the system."""
        return _tamrix_remote_upload_file(self._open(), _os.fspath(localPath), _os.fspath(remotePath))

    def download(self, remotePath, localPath):
        """Copies a file of the system to this machine."""
        return _tamrix_remote_download_file(self._open(), _os.fspath(remotePath), _os.fspath(localPath))

    def listFiles(self, path):
        """The names of all that is in a folder, sorted."""
        return _tamrix_remote_get_directory_content(self._open(), _os.fspath(path))

    def getPathProperty(self, path, name):
        """What is known of a path: "size", "isFile", "isDirectory", "isLink", "linkTarget",
        "permissions", "ownerId", "groupId", "lastModified", "lastAccessed"."""
        return _tamrix_remote_get_path_property(self._open(), _os.fspath(path), name)

    def execute(self, command, cwd="", env=None, options=None):
        """Runs a program to its end: a list of the program and its arguments.

        Gives a dictionary with "exitcode", "stdout" and "stderr". Options: "timeout" in seconds
        (30), "clearenv" (False), "encoding" ("UTF-8"), "keepLineEnding" (False)."""
        if not isinstance(command, str):
            command = [_os.fspath(word) if isinstance(word, _os.PathLike) else word
                       for word in command]
        result = dict(_tamrix_remote_execute_command(
            self._open(), command, _os.fspath(cwd), {} if env is None else dict(env),
            {} if options is None else dict(options)))
        result["exitcode"] = int(result["exitcode"])
        return result
