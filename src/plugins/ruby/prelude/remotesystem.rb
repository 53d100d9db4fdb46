# Files and programs of another machine, by SSH.
#
# Without arguments it is the default system: the one that the settings name, else this machine.
# Close it, or give new() a block; at the end of the test case it is closed anyway. What can't be
# done raises Tamrix::Error.
class Tamrix::RemoteSystem
  def self.open(host = nil, port = nil)
    system = new(host, port)
    return system unless block_given?
    begin
      yield system
    ensure
      system.close if system.open?
    end
  end

  def initialize(host = nil, port = nil)
    @handle = if host || port
                _tamrix_connect_to_remote_system(host || '', port || -1)
              else
                _tamrix_connect_to_remote_system
              end
  end

  def open? = !@handle.nil?

  def close
    handle = checked
    @handle = nil
    _tamrix_close_remote_system_connection(handle)
  end

  def environment_variable(name) = _tamrix_remote_get_environment_variable(checked, name)
  def os_name = _tamrix_remote_get_os_name(checked)
  def exists(path) = _tamrix_remote_path_exists(checked, path.to_s)
  def rename(from, to) = _tamrix_remote_rename_path(checked, from.to_s, to.to_s)

  def create_path(path, recursive: false)
    _tamrix_remote_create_path(checked, path.to_s, recursive)
  end

  def delete_path(path, recursive: false)
    _tamrix_remote_delete_path(checked, path.to_s, recursive)
  end

  def create_file(path, content = '', encoding: 'UTF-8')
    _tamrix_remote_create_file(checked, path.to_s, content, encoding)
  end

  def delete_file(path) = _tamrix_remote_delete_file(checked, path.to_s)
  def copy(from, to) = _tamrix_remote_copy_path(checked, from.to_s, to.to_s)
  def upload(local, remote) = _tamrix_remote_upload_file(checked, local.to_s, remote.to_s)
  def download(remote, local) = _tamrix_remote_download_file(checked, remote.to_s, local.to_s)
  def list_files(path) = _tamrix_remote_get_directory_content(checked, path.to_s)
  def path_property(path, name) = _tamrix_remote_get_path_property(checked, path.to_s, name.to_s)

  # Runs a program to its end: an Array of the program and its arguments. Gives a Hash with
  # "exitcode", "stdout" and "stderr". Options: timeout in seconds (30), clearenv, encoding,
  # keepLineEnding.
  def execute(command, cwd: '', env: {}, **options)
    command = command.map(&:to_s) if command.is_a?(Array)
    result = _tamrix_remote_execute_command(checked, command, cwd.to_s, env, options)
    result.merge('exitcode' => result['exitcode'].to_i)
  end

  alias getEnvironmentVariable environment_variable
  alias getOSName os_name
  alias exist? exists
  alias createPath create_path
  alias deletePath delete_path
  alias createFile create_file
  alias deleteFile delete_file
  alias listFiles list_files
  alias getPathProperty path_property

  private

  def checked = @handle || raise(Tamrix::Error, 'The remote system is closed')
end
RemoteSystem = Tamrix::RemoteSystem
