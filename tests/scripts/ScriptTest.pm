# SPDX-License-Identifier: Apache-2.0
# What the tests of the scripts share: files written and read, commands run.
package ScriptTest;
use strict;
use warnings;
use Exporter 'import';
use File::Temp 'tempfile';

our @EXPORT_OK = qw(put get run);

# Writes a file; gives its path.
sub put {
	my ($path, $text) = @_;
	open my $file, '>:raw', $path or die "$path: $!";
	print $file $text;
	close $file or die "$path: $!";
	return $path;
}

# All of a file; undef where there is none.
sub get {
	my ($path) = @_;
	open my $file, '<:raw', $path or return undef;
	local $/;
	return <$file> // '';
}

# Runs a command; gives its status ('signal' where that ended it), its standard output and its standard error.
sub run {
	my (@words) = @_;
	my (undef, $out) = tempfile(UNLINK => 1);
	my (undef, $err) = tempfile(UNLINK => 1);
	my $pid = fork // die;
	if (!$pid) {
		open STDIN, '<', '/dev/null' or die;
		open STDOUT, '>', $out or die;
		open STDERR, '>', $err or die;
		exec @words or die "$words[0]: $!";
	}
	waitpid $pid, 0;
	my @result = ($? & 127 ? 'signal' : $? >> 8, get($out), get($err));
	unlink $out, $err;
	return @result;
}

1;
