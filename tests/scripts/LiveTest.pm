# SPDX-License-Identifier: Apache-2.0
# What the tests of live pictures share: a live script or a renderer that stays, spoken to by lines, and states.
package LiveTest;
use strict;
use warnings;
use Exporter 'import';
use File::Path 'make_path';
use IO::Handle;
use POSIX ();
use Time::HiRes ();
use ScriptTest qw(line_map put);

our @EXPORT_OK = qw(ends shader state until_true);

# Starts a program that is spoken to. Its standard error goes to the file.
sub start {
	my ($class, $errors, @words) = @_;
	pipe my $asked, my $to or die;
	pipe my $from, my $said or die;
	my $pid = fork // die;
	if (!$pid) {
		open STDIN, '<&', $asked or die;
		open STDOUT, '>&', $said or die;
		open STDERR, '>>', $errors or die;
		exec { $words[0] } @words or die "$words[0]: $!";
	}
	close $_ for $asked, $said;
	$to->autoflush(1);
	return bless { pid => $pid, to => $to, from => $from, text => '' }, $class;
}

sub say {
	my ($self, @lines) = @_;
	local $SIG{PIPE} = 'IGNORE';
	syswrite $self->{to}, join '', map { "$_\n" } @lines;
}

# The next line, but those that only tell that the work goes on; undef at the end, or where none comes for very long.
sub line {
	my ($self) = @_;
	while (1) {
		next if $self->{text} =~ s/\Aalive .*\n//;
		return $1 if $self->{text} =~ s/\A(.*?)\n//;
		my $ready = '';
		vec($ready, fileno $self->{from}, 1) = 1;
		return undef if select($ready, undef, undef, 200) <= 0;
		return undef if !sysread $self->{from}, $self->{text}, 65536, length $self->{text};
	}
}

# The lines up to the one that answers a state, or a request.
sub answer {
	my ($self) = @_;
	my @lines;
	while (defined(my $line = $self->line)) {
		push @lines, $line;
		last if $line =~ /^(?:picture|error|dropped|refused|failed)\b/;
	}
	return @lines;
}

# Its answer to one state, the last line of it.
sub asked {
	my ($self, $dir) = @_;
	$self->say($dir);
	my @lines = $self->answer;
	return wantarray ? @lines : $lines[-1] // 'nothing';
}

# Ends its input and waits for its end; gives its status.
sub finish {
	my ($self) = @_;
	close $self->{to};
	waitpid $self->{pid}, 0;
	return $? & 127 ? 'signal ' . ($? & 127) : $? >> 8;
}

# Its children.
sub children {
	my ($self) = @_;
	my @found;
	for my $file (glob '/proc/[0-9]*/stat') {
		open my $in, '<', $file or next;
		my $line = <$in> // '';
		push @found, $1 if $line =~ /^(\d+) \(.*\) ([A-Z]) (\d+) /s && $3 == $self->{pid} && $2 ne 'Z';
	}
	return @found;
}

# Its child, for which it waits.
sub child {
	my ($self) = @_;
	my @found;
	until_true(sub { (@found = $self->children) > 0 }) or die 'there is no child';
	return $found[0];
}

# Waits, with patience, until something holds.
sub until_true {
	my ($test) = @_;
	for (1 .. 20000) {
		return 1 if $test->();
		Time::HiRes::sleep(0.01);
	}
	return 0;
}

# Whether processes come to their end; nobody may have waited for them yet.
sub ends {
	my (@pids) = @_;
	return until_true(sub {
		!grep { my $stat = ScriptTest::get("/proc/$_/stat") // ''; $stat ne '' && $stat !~ /\) Z / } @pids;
	});
}

# Writes a state; gives its directory.
sub state {
	my ($dir, $name, $code, %options) = @_;
	make_path($dir);
	if (defined $code) {
		put("$dir/codegenfile", $code);
		put("$dir/linemap", line_map($code));
	}
	put("$dir/hintfile", '');
	put("$dir/render_options", join '', map { "setenv $_ \"$options{$_}\"\n" } sort keys %options);
	put("$dir/name", "$name\n");
	return $dir;
}

# A generated source whose box Ball_1 has some statements; %of has further lines for the head and arguments.
sub shader {
	my ($statements, %of) = @_;
	my $arguments = join '', map {
		"ArgName $_->[0]\n{\n    Stow 0\n    Lock 0\n    Pin 0\n    BoxTitle Ball\n    ButtonTitle $_->[0]\n"
			. "    Comments \n    $_->[1] $_->[2]\n}\n\n"
	} @{ $of{arguments} // [] };
	return "Help\n{\n>A ball of \"1.0\"\n}\n\n${arguments}EndArginfo\n#version 330 core\n// Shader Ball\n//\@prelude surface\n"
		. "//\@arguments\n" . ($of{head} // '') . "void main()\n{\n    tvColor = vec4(0.0, 0.0, 0.0, 1.0);\n    \n    // Ball_1\n"
		. join('', map { "    $_\n" } split /\n/, $statements) . "}\n";
}

1;
