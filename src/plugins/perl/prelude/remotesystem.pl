# Files and programs of another machine.
package RemoteSystem;
sub new {
    my ($class, $host, $port) = @_;
    my $handle = defined $host || defined $port
        ? main::_tamrix_connect_to_remote_system($host // '', $port // -1)
        : main::_tamrix_connect_to_remote_system();
    return bless {handle => $handle}, $class;
}
sub _open { $_[0]{handle} // die tamrix::Error->new('The remote system is closed') }
sub close {
    my $self = shift;
    my $handle = $self->_open;
    delete $self->{handle};
    main::_tamrix_close_remote_system_connection($handle);
}
sub getEnvironmentVariable { main::_tamrix_remote_get_environment_variable($_[0]->_open, "$_[1]") }
sub getOSName { main::_tamrix_remote_get_os_name($_[0]->_open) }
sub exists { main::_tamrix_remote_path_exists($_[0]->_open, "$_[1]") }
sub rename { main::_tamrix_remote_rename_path($_[0]->_open, "$_[1]", "$_[2]") }
sub createPath { main::_tamrix_remote_create_path($_[0]->_open, "$_[1]", !!$_[2]) }
sub deletePath { main::_tamrix_remote_delete_path($_[0]->_open, "$_[1]", !!$_[2]) }
sub createFile {
    my ($self, $path, $content, $encoding) = @_;
    main::_tamrix_remote_create_file($self->_open, "$path", $content // '', $encoding // 'UTF-8');
}
sub deleteFile { main::_tamrix_remote_delete_file($_[0]->_open, "$_[1]") }
sub copy { main::_tamrix_remote_copy_path($_[0]->_open, "$_[1]", "$_[2]") }
sub upload { main::_tamrix_remote_upload_file($_[0]->_open, "$_[1]", "$_[2]") }
sub download { main::_tamrix_remote_download_file($_[0]->_open, "$_[1]", "$_[2]") }
sub listFiles { main::_tamrix_remote_get_directory_content($_[0]->_open, "$_[1]") }
sub getPathProperty { main::_tamrix_remote_get_path_property($_[0]->_open, "$_[1]", "$_[2]") }
sub execute {
    my ($self, $command, $cwd, $env, $options) = @_;
    my $result = main::_tamrix_remote_execute_command(
        $self->_open, ref $command eq 'ARRAY' ? [map { "$_" } @$command] : $command, $cwd // '',
        $env // {}, $options // {});
    return {%$result, exitcode => $result->{exitcode} + 0};
}
1;
