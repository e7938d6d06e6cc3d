# SPDX-License-Identifier: Apache-2.0
# perl redirect.pl IN OUT ERR COMMAND [ARGUMENT...]
#
# Runs COMMAND with its standard input, output and error connected to the
# files IN, OUT and ERR; "-" leaves a stream as it is. This process becomes
# the command, so its exit status is the command's.
#
#   exit 1    a stream cannot be opened
#   exit 2    this script was called wrongly
#   exit 126  the command is there but cannot be run
#   exit 127  the command is not there
#
# Every operator of a document that is opened, and every box that is made, costs
# one run of this script, so it loads no module: strict and warnings alone would double its time.
#
# A Perl script whose second line is "# redirect: inline" is run by this very
# interpreter instead of a second one, which saves a third of the whole time.
# The line is a promise of the script: it has no switches after "#!", no DATA
# section, no INIT or CHECK block and no use for caller() at its top level,
# the points in which a script run by "do" differs from one that was started.

if (@ARGV < 4) {
	print STDERR "usage: redirect.pl IN OUT ERR COMMAND [ARGUMENT...]\n";
	exit 2;
}
my ($in, $out, $err) = splice @ARGV, 0, 3;

# The error stream comes first, so that what is said below reaches its file.
$err eq '-' or open STDERR, '>', $err
	or redirect_fail(1, "cannot write $err: $!");
if ($in ne '-') {
	open STDIN, '<', $in or redirect_fail(1, "cannot read $in: $!");
	-d STDIN and redirect_fail(1, "cannot read $in: it is a directory");
}
$out eq '-' or open STDOUT, '>', $out
	or redirect_fail(1, "cannot write $out: $!");

my $command = shift @ARGV;
if (index($command, "/") >= 0 && -f $command
		&& open SCRIPT, '<', $command) {
	my $first = <SCRIPT>;
	my $second = <SCRIPT>;
	close SCRIPT;
	if (defined $second && $first =~ /^#!\S*perl\s*$/
			&& $second =~ /^# redirect: inline\s*$/) {
		$0 = $command;
		$! = 0;
		{
			package main;
			do($command =~ m{^\.{0,2}/} ? $command : "./$command");
		}
		die $@ if $@;
		exit 0;
	}
	# A script that has lost its execute bit is run all the same.
	if (!-x _ && defined $first && $first =~ /^#!\S*perl\s*$/) {
		unshift @ARGV, $command;
		$command = $^X;
	}
}
exec { $command } $command, @ARGV;
redirect_fail($! == 2 ? 127 : 126, "cannot run $command: $!");

sub redirect_fail {
	print STDERR "redirect.pl: $_[1]\n";
	exit $_[0];
}
