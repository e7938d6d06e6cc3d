# SPDX-License-Identifier: Apache-2.0
# What the tests of the scripts share: files written and read, commands run.
package ScriptTest;
use strict;
use warnings;
use Exporter 'import';
use File::Temp 'tempfile';

our @EXPORT_OK = qw(line_map put get run);

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

# A map of lines for a source in which comments such as "// Noise_3" tell whose the lines behind them are, up to a
# brace at a line's begin. Each is the line of its operator's file with the number that it has behind the comment.
# Arguments are those of boxes with the number 7.
sub line_map {
	my ($code) = @_;
	my (@boxes, @runs, %box);
	my $box_of = sub {
		my ($operator, $wid) = @_;
		return $box{"$operator $wid"} //= push @boxes, [$wid, $operator];
	};
	my ($at, $box, $comment, $begin) = (0, 0, 0, $code =~ /^EndArginfo$/m ? 0 : 1);
	my @lines = split /\n/, $code;
	for my $line (@lines) {
		$at++;
		if (!$begin) {
			push @runs, [$at] if $line =~ /^ArgName /;
			push @{ $runs[-1] }, $1 if $line =~ /^ *(?:Box|Button)Title +(.*)/;
			$begin = $line eq 'EndArginfo';
			next;
		}
		if ($line =~ m{^\s*// (\S.*)_(\d+)$}) {
			($box, $comment) = ($box_of->($1, $2), $at);
		} elsif ($line =~ /^\}/) {
			$box = 0;
		}
		my $file = $box && $at > $comment ? $box : 0;
		push @runs, "line $at 1 $box main-body $file " . ($file ? $at - $comment : 0);
	}
	@runs = map { ref ? "argument $_->[0] 9 " . $box_of->($_->[1], 7) . " $_->[2]" : $_ } @runs;
	return join '', map { "$_\n" } '#source lines 1', map({ "box @$_" } @boxes), map({ "file /operators/$_->[1]" } @boxes),
		@runs;
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
