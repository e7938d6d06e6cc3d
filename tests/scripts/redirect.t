# SPDX-License-Identifier: Apache-2.0
# redirect.pl: streams, exit status, and scripts run in the same interpreter.
use strict;
use warnings;
use File::Temp 'tempdir';
use FindBin;
use Test::More;

my $redirect = "$FindBin::Bin/../../installation/mray/bin/redirect.pl";
my $dir = tempdir(CLEANUP => 1);

sub put {
	my ($name, $text, $mode) = @_;
	open my $file, '>:raw', "$dir/$name" or die "$name: $!";
	print $file $text;
	close $file;
	chmod $mode, "$dir/$name" if $mode;
	return "$dir/$name";
}

sub get {
	my ($name) = @_;
	open my $file, '<:raw', "$dir/$name" or return undef;
	local $/;
	return <$file> // '';
}

# The exit status of redirect.pl; its own streams go to files, too.
sub run {
	my (@words) = @_;
	unlink "$dir/out", "$dir/err";
	my $pid = fork;
	if (!$pid) {
		open STDOUT, '>', "$dir/real.out" or die;
		open STDERR, '>', "$dir/real.err" or die;
		exec $^X, $redirect, @words;
	}
	waitpid $pid, 0;
	return $? & 127 ? "signal " . ($? & 127) : $? >> 8;
}

# ---- streams

my $in = put('in', "one\ntwo\n");
is(run($in, "$dir/out", '-', 'cat'), 0, 'cat from file to file');
is(get('out'), "one\ntwo\n", 'the input file was read and the output file written');

put('out', 'x' x 5000);
is(run('-', "$dir/out", '-', 'echo', 'short'), 0, 'an output file that exists');
is(get('out'), "short\n", 'is written anew');

is(run('-', '-', "$dir/err", 'sh', '-c', 'echo seen; echo said >&2'), 0, 'error stream alone');
is(get('err'), "said\n", 'the error file has the errors');
is(get('real.out'), "seen\n", '"-" leaves standard output alone');
is(get('real.err'), '', 'nothing is left for standard error');

my @odd = ('', ' a  b ', '"q"', '$HOME', '*', "new\nline", '-', '--');
is(run('-', "$dir/out", '-', $^X, '-e', 'print map { "[$_]" } @ARGV', '--', @odd), 0, 'odd arguments');
is(get('out'), join('', map { "[$_]" } @odd), 'arguments arrive as they are, with no shell between');

# ---- exit status

is(run('-', '-', '-', 'sh', '-c', 'exit 7'), 7, 'the exit status is the command\'s');
is(run('-', '-', '-', 'sh', '-c', 'kill -TERM $$'), 'signal 15', 'and so is death by a signal');
my $pid_seen = do {
	run('-', "$dir/out", '-', 'sh', '-c', 'echo $PPID');
	get('out') + 0;
};
is($pid_seen, $$, 'the command has taken the place of redirect.pl');

is(run('-', '-', "$dir/err", "$dir/nothing"), 127, 'a missing command');
like(get('err'), qr{\Q$dir\E/nothing: No such file}, 'is named in the redirected error stream');
is(run('-', '-', '-', 'tavrn-no-such-command'), 127, 'a missing command on the search path');
like(get('real.err'), qr{tavrn-no-such-command}, 'is named on standard error');
is(run('-', '-', "$dir/err", $dir), 126, 'a directory as command');
like(get('err'), qr{\Q$dir\E}, 'is named');
is(run('-', '-', "$dir/err", $in), 126, 'a file that is no program');
like(get('err'), qr{\Q$in\E}, 'is named');

is(run("$dir/no.in", "$dir/out", "$dir/err", 'cat'), 1, 'a missing input file');
like(get('err'), qr{cannot read \Q$dir\E/no\.in: No such file}, 'is named');
is(run($dir, "$dir/out", "$dir/err", 'cat'), 1, 'a directory as input');
like(get('err'), qr{cannot read \Q$dir\E: it is a directory}, 'is named');
is(run('-', "$dir/no/out", "$dir/err", 'cat'), 1, 'an output file that cannot be made');
like(get('err'), qr{cannot write \Q$dir\E/no/out}, 'is named');
is(run('-', '-', "$dir/no/err", 'cat'), 1, 'an error file that cannot be made');
like(get('real.err'), qr{cannot write \Q$dir\E/no/err}, 'is named on the old error stream');
ok(!-e "$dir/out", 'no output file is made where a stream before it failed');

is(run('-', '-', '-'), 2, 'no command');
like(get('real.err'), qr{^usage:}, 'tells the usage');

# ---- scripts run by the same interpreter

my $head = "#!/usr/bin/perl\n# redirect: inline\n";
my $script = put('script', $head . <<'END_SCRIPT', 0755);
print "$0|", join(',', @ARGV), "|$$\n";
print STDERR "warned\n";
END { print "ended\n" }
exit 5;
END_SCRIPT
is(run('-', "$dir/out", "$dir/err", $script, 'a', 'b c'), 5, 'an inline script: its exit status');
like(get('out'), qr{^\Q$script\E\|a,b c\|\d+\nended\n\z}, '$0, @ARGV and END as in a script of its own');
is(get('err'), "warned\n", 'its error stream');

put('script', $head . "print <STDIN>;\n", 0755);
is(run($in, "$dir/out", '-', $script), 0, 'an inline script that falls off its end');
is(get('out'), "one\ntwo\n", 'reads the input file');

put('script', $head . "\$! = 0; die qq(gave up\\n);\n", 0755);
is(run('-', '-', "$dir/err", $script), 255, 'an inline script that dies');
is(get('err'), "gave up\n", 'leaves its words in the error file');

put('script', $head . "sub {\n", 0755);
is(run('-', '-', "$dir/err", $script), 255, 'an inline script with a syntax error');
like(get('err'), qr{script line \d}, 'is told with file and line');

# The same script, inline and not, must not differ.
my $body = <<'END_SCRIPT';
my @l = <STDIN>;
print scalar(@l), ' ', (-t STDIN ? 1 : 0), " $0 @ARGV\n";
warn "w\n";
exit @ARGV;
END_SCRIPT
my @results;
for my $text ("#!/usr/bin/perl\n# redirect: inline\n$body", "#!/usr/bin/perl\n# of its own\n$body") {
	put('script', $text, 0755);
	my $status = run($in, "$dir/out", "$dir/err", $script, 'p', 'q', 'r');
	push @results, join '/', $status, get('out'), get('err');
}
is($results[0], $results[1], 'inline and started scripts do not differ');
like($results[0], qr{^3/2 0}, 'and both ran');

put('script', "#!/usr/bin/perl -l\n# redirect: inline\nprint 'x';\n", 0755);
run('-', "$dir/out", '-', $script);
is(get('out'), "x\n", 'a script with switches gets them, marked inline or not');

put('script', "#!/usr/bin/perl\nprint 'no bit';\n", 0644);
is(run('-', "$dir/out", '-', $script), 0, 'a Perl script without its execute bit');
is(get('out'), 'no bit', 'is run all the same');

mkdir "$dir/sub";
put('sub/script', $head . "print 'near';\n", 0755);
chdir $dir;
is(run('-', "$dir/out", '-', 'sub/script'), 0, 'an inline script by a relative path');
is(get('out'), 'near', 'is found from the current directory');
chdir '/';

put('script', "\0\xff\xfe" x 100, 0755);
isnt(run('-', "$dir/out", "$dir/err", $script), 0, 'a program of binary noise fails');

done_testing;
